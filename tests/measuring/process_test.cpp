#include "corvantile/measuring/process.hpp"

#include <chrono>
#include <csignal>
#include <thread>

#include "surroundings.hpp"

namespace corvantile::measuring {
namespace {

using std::chrono::milliseconds;
using Process = Surroundings;

child shell(const std::string& script, milliseconds limit = milliseconds(5000)) {
  return {.argv = {"/bin/sh", "-c", script}, .limit = limit, .grace = milliseconds(30)};
}

TEST_F(Process, TellsHowItEnded) {
  write("no_interpreter", "#!/no/such/shell\n");
  std::filesystem::permissions(path("no_interpreter"), std::filesystem::perms{0755});
  const struct {
    child c;
    ending how;
    int code;
    const char *out, *words;
  } rows[] = {{shell("echo out; echo 'no instrument' >&2; exit 3"), ending::exited, 3, "out\n",
               "sh ended with status 3: no instrument"},
              {shell("read line || echo no input"), ending::exited, 0, "no input\n", "sh ended with status 0"},
              {shell("sleep 60 & echo done"), ending::exited, 0, "done\n", "sh ended with status 0"},
              {shell("kill -KILL $$"), ending::killed, SIGKILL, "", "sh was ended by signal 9"},
              {shell("kill -PIPE $$; echo alive"), ending::killed, SIGPIPE, "", "sh was ended by signal 13"},
              {shell("exec sleep 60", milliseconds(20)), ending::timed_out, SIGTERM, "",
               "sh took longer than 0.02 s and was ended"},
              {shell("trap '' TERM; echo deaf; while :; do sleep 60; done", milliseconds(50)), ending::timed_out,
               SIGKILL, "deaf\n", "sh took longer than 0.05 s and was ended"},
              {{.argv = {"no-such-program", "-v"}}, ending::not_found, 0, "", "there is no program no-such-program"},
              {{.argv = {path("no_interpreter")}},
               ending::not_started,
               ENOENT,
               "",
               "no_interpreter cannot be started: No such file or directory"},
              {{.argv = {}}, ending::not_found, 0, "", "there is no program "}};
  std::signal(SIGPIPE, SIG_IGN);  // as the kit does; children are not to inherit it
  for (const auto& r : rows) {
    SCOPED_TRACE(r.words);
    const child_result ended = run_captured(r.c, stop_);
    EXPECT_EQ(ended.how, r.how);
    EXPECT_EQ(ended.code, r.code);
    EXPECT_EQ(ended.out, r.out);
    EXPECT_EQ(words_for(r.c, ended), r.words);
  }
}

TEST_F(Process, KeepsOutputWithoutStoppingTheChild) {
  const child_result r = run_captured(shell("yes | head -c 3000000; echo end >&2"), stop_);
  EXPECT_TRUE(r.ok());
  EXPECT_EQ(r.out.size(), std::size_t{1} << 20U);
  EXPECT_EQ(r.err, "end\n");
  child c = shell("echo $LC_ALL $FAKE_STATE");
  c.environment = {"LC_ALL=C", "FAKE_STATE=other"};
  EXPECT_EQ(run_captured(c, stop_).out, "C other\n");
}

// Whether the process, which is not our child, ends soon. It may stay as a zombie until whoever inherits it looks.
bool ends(const std::string& pid) {
  const auto runs = [&] {
    const auto state = read_file("/proc/" + std::to_string(std::stoi(pid)) + "/stat");
    return state && state->find(") Z") == std::string::npos;
  };
  for (int i = 0; i < 200 && runs(); ++i) std::this_thread::sleep_for(milliseconds(5));
  return !runs();
}

TEST_F(Process, EndsTheWholeGroup) {
  const char* script = "(trap '' TERM; exec sleep 60) & echo $!; wait";  // deaf to the first request
  EXPECT_TRUE(ends(run_captured(shell(script, milliseconds(50)), stop_).out)) << "out of time";
  const auto r = run_captured(shell("trap '' INT; sleep 60 & echo $!; kill -INT $PPID; wait"), stop_);
  EXPECT_EQ(r.how, ending::interrupted);
  EXPECT_TRUE(ends(r.out)) << "interrupted";
  EXPECT_EQ(stop_.first(), SIGINT);
  EXPECT_EQ(run_captured(shell("echo"), stop_).how, ending::interrupted) << "nothing starts after that";
  EXPECT_FALSE(stop_.pause(milliseconds(60000))) << "nor waits";
}

TEST_F(Process, LeavesCtrlCToAChildAtTheTerminal) {
  EXPECT_EQ(run_in_terminal(shell("exit 4"), stop_).code, 4);
  // The person says no, and the child goes on.
  const auto heard =
      run_in_terminal(shell("trap 'heard=1' INT; kill -INT $PPID; while [ -z $heard ]; do sleep 0.01; done"), stop_);
  EXPECT_TRUE(heard.ok()) << "passed on, because it did not come from the terminal";
  EXPECT_EQ(stop_.first(), 0);
  EXPECT_EQ(run_in_terminal(shell("kill -INT $$"), stop_).how, ending::interrupted)
      << "at the terminal, only the child saw it";
  EXPECT_EQ(run_in_terminal(shell("kill -TERM $PPID; exec sleep 60"), stop_).how, ending::interrupted);
  EXPECT_EQ(stop_.first(), SIGTERM);
}

TEST_F(Process, FindsProgramsOnThePath) {
  write("bin/tool", "");
  write("bin/text", "");
  std::filesystem::permissions(path("bin/tool"), std::filesystem::perms{0755});
  std::filesystem::create_directory(path("bin/folder"));
  const std::string search = "/no/such::" + path("bin");
  EXPECT_EQ(find_program("tool", search), path("bin/tool"));
  EXPECT_EQ(find_program(path("bin/tool"), ""), path("bin/tool"));
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(path("bin"));
  EXPECT_FALSE(find_program("tool", "::/no/such:")) << "the current folder is not searched";
  std::filesystem::current_path(before);
  for (const char* name : {"text", "folder", "", "missing"}) EXPECT_FALSE(find_program(name, search)) << name;
}

}  // namespace
}  // namespace corvantile::measuring
