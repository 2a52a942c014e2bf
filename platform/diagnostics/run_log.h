#pragma once

#include <string>

namespace platform {

// What one run has to say beside its boxes and its report, and what has to be known of it when it
// has ended. Lines go to standard error and name the device.
class RunLog {
  public:
    // `device` as its user named it; empty where there is none yet.
    explicit RunLog(const std::string& device);

    void Say(const std::string& text);

    // The same about something that could not be done.
    void SayUndone(const std::string& text);
    void CountUndone() { ++undone_; }  // where the line stands elsewhere

    // The step of the Apply sequence that is being carried out; 0 outside of one.
    int step() const { return step_; }
    void BeginStep(int step) {
        step_ = step;
        ++stepsBegun_;
    }
    unsigned stepsBegun() const { return stepsBegun_; }

    void NoteNoSettings() { hasSettings_ = false; }
    void NoteNotStored() { isStored_ = false; }

    // The exit code of a run that came to its end: whether what the program stores is stored, and,
    // with `strict`, whether everything could be done and there were settings.
    int ExitCode(bool strict) const;

  private:
    std::string prefix_;
    unsigned long undone_ = 0;
    int step_ = 0;
    unsigned stepsBegun_ = 0;
    bool hasSettings_ = true;
    bool isStored_ = true;
};

// Makes `log` the one that the program's notes go to, for as long as the object lives; without any,
// they go to one that names no device. The log stays the caller's. One at a time.
class LogInUse {
  public:
    explicit LogInUse(RunLog& log);
    ~LogInUse();
    LogInUse(const LogInUse&) = delete;
    LogInUse& operator=(const LogInUse&) = delete;

    static RunLog& Current();
};

}  // namespace platform
