#include "corvantile/measuring/procedure.hpp"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

#include "corvantile/utils/failure.hpp"
#include "surroundings.hpp"

namespace corvantile::measuring {
namespace {

class Procedure : public Surroundings {
 protected:
  // Each step writes a file that holds its name and input, and notes that it ran.
  step writing(const std::string& name, const std::string& inputs = "") {
    return {.name = name, .inputs = inputs, .run = [this, name, inputs] {
              ran_ += name;
              if (name == killed_at_) ::raise(SIGKILL);
              write(name + ".txt", name + inputs);
              return step_result{.files = {name + ".txt"}};
            }};
  }
  std::vector<step> steps() { return {writing("a"), writing("b"), writing("c")}; }
  // Which steps run.
  std::string run(const std::vector<step>& all) {
    ran_.clear();
    last_ = run_procedure(path("."), "calibrate", all);
    return ran_;
  }

  std::string ran_, killed_at_;
  procedure_result last_;
};

TEST_F(Procedure, RunsOnlyWhatIsNotDone) {
  EXPECT_EQ(run(steps()), "abc");
  EXPECT_EQ(run(steps()), "");
  EXPECT_TRUE(last_.status.ok());
  EXPECT_FALSE(last_.stopped_at);
  write("b.txt", "changed by somebody");
  EXPECT_EQ(steps_done(path("."), "calibrate", steps()), std::vector<std::string>{"a"});
  EXPECT_EQ(run(steps()), "bc") << "a result that changed, and all that was made of it";
  std::filesystem::remove(path("a.txt"));
  EXPECT_EQ(run(steps()), "abc");
  auto other = steps();
  other[1] = writing("b", "other options");
  EXPECT_EQ(run(other), "bc");
  other.push_back(writing("d"));
  EXPECT_EQ(run(other), "d") << "a longer procedure";
  for (const char* damage : {"", "{\"version\": 1, \"done\": [{\"step\": 7}]}", "{\"version\": 2, \"done\": []}"}) {
    write("calibrate.json", damage);
    EXPECT_EQ(run(other), "abcd") << damage;
  }
}

TEST_F(Procedure, GoesOnAfterAKillInAnyStep) {
  EXPECT_EQ(run(steps()), "abc");
  const std::string record = content("calibrate.json");
  for (const char* at : {"a", "b", "c"}) {
    for (const char* name : {"calibrate.json", "a.txt", "b.txt", "c.txt"}) std::filesystem::remove(path(name));
    const pid_t other = ::fork();
    if (other == 0) {
      killed_at_ = at;
      run(steps());
      ::_exit(9);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(other, &status, 0), other);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(run(steps()), std::string("abc").substr(std::string("abc").find(at)));
    EXPECT_EQ(content("calibrate.json"), record) << "the same in the end";
  }
}

TEST_F(Procedure, StopsWhereAPersonIsNeeded) {
  auto all = steps();
  const struct {
    step_result result;
    const char* why;
  } rows[] = {{{.status = {outcome::failed, "no instrument"}}, "failed"},
              {{.status = {outcome::interrupted, "stopped"}}, "interrupted"},
              {{.status = {outcome::done, "the check finds errors"}, .decide = true}, "a decision"}};
  for (const auto& r : rows) {
    all[1].run = [&] { return r.result; };
    EXPECT_EQ(run(all), &r == rows ? "a" : "") << r.why;
    EXPECT_EQ(last_.stopped_at, "b");
    EXPECT_EQ(last_.status.words, r.result.status.words);
    EXPECT_EQ(last_.decide, r.result.decide);
  }
  all[1].run = [] { return step_result{.files = {"never-written"}}; };
  EXPECT_THROW(run(all), failure);
  EXPECT_EQ(run(steps()), "bc");
}

TEST_F(Procedure, RepeatsAStepThatNoLongerHolds) {
  EXPECT_EQ(run(steps()), "abc");
  auto all = steps();
  all[1].holds = [] { return false; };
  EXPECT_EQ(run(all), "b") << "it left the same files, so what follows stays done";
  all[1].run = [this] {
    ran_ += "b";
    write("b.txt", "something else");
    return step_result{.files = {"b.txt"}};
  };
  EXPECT_EQ(run(all), "bc");
}

TEST_F(Procedure, KeepsASecondRunOut) {
  std::vector<step> all{{.name = "outer", .run = [&] {
                           EXPECT_THROW(run_procedure(path("."), "calibrate", steps()), failure);
                           return step_result{};
                         }}};
  EXPECT_TRUE(run_procedure(path("."), "calibrate", all).status.ok());
}

}  // namespace
}  // namespace corvantile::measuring
