// fake_generator: a pattern generator for shell tests. It keeps what it shows in FAKE_STATE/screen, and ends when the
// measuring program has gone.
// Usage: fake_generator PORT [late=MILLISECONDS] [hang_up=MESSAGES]

#include <cstdlib>
#include <string_view>

#include "tests/measuring/fakes/generator.hpp"

int main(int argc, char** argv) {
  using namespace corvantile::measuring;
  const char* state = std::getenv("FAKE_STATE");
  if (argc < 2 || state == nullptr) return 2;
  generator_habits habits;
  for (int i = 2; i < argc; ++i) {
    const std::string_view word(argv[i]);
    const int value = std::atoi(argv[i] + word.find('=') + 1);
    if (word.starts_with("late=")) habits.late = std::chrono::milliseconds(value);
    if (word.starts_with("hang_up=")) habits.hang_up_after = value;
  }
  const std::atomic<bool> never = false;
  const std::string screen = std::string(state) + "/screen";
  // The measuring program may start after us.
  for (int attempt = 0; attempt < 200; ++attempt) {
    bool any = false;
    play_generator(static_cast<std::uint16_t>(std::atoi(argv[1])), habits, never,
                   [&](const std::vector<int>& codes, const std::string&) {
                     any = true;
                     generator::write_screen(screen, codes);
                   });
    if (any) return 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return 1;
}
