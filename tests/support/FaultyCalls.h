#pragma once

#include <cerrno>

#include "platform/files/FileCalls.h"

namespace veltrane::tests {

enum class Unnamed { Yes, No }; ///< whether the file system knows files without a name

/// The system's calls, the n-th of which fails; some fail by doing half. Every write is a short one, and
/// nothing is forced onto the disk: a table of failures would take minutes.
class FaultyCalls : public FileCalls {
public:
    /// `nth` counts from 1; 0 fails none.
    FaultyCalls(Unnamed unnamed, int nth, int error) : unnamed(unnamed), nth(nth), error(error) { }

    /// Whether there were so many calls that the n-th was one of them.
    [[nodiscard]] bool Met() const noexcept { return nth > 0 && made >= nth; }

    /// Whether the system could not say that the bytes are on the disk: the user has to hear of it.
    [[nodiscard]] bool MustBeTold() const noexcept { return mustBeTold; }

    /// Whether a name could not be taken away again: the next save has to.
    [[nodiscard]] bool MayLeaveAName() const noexcept { return mayLeaveAName; }

    int OpenFolder(const std::string& p) override { return Fails() ? -1 : FileCalls::OpenFolder(p); }
    int OpenUnnamed(int d) override;
    int CreateNamed(int d, const char* n) override { return Fails() ? -1 : FileCalls::CreateNamed(d, n); }
    int OpenExisting(int d, const char* n) override { return Fails() ? -1 : FileCalls::OpenExisting(d, n); }
    int Lock(int f, bool wait) override { return Fails() ? -1 : FileCalls::Lock(f, wait); }
    int ChangeMode(int f, mode_t m) override { return Fails() ? -1 : FileCalls::ChangeMode(f, m); }
    ssize_t Write(int f, const void* b, std::size_t n) override;
    int Sync(int f) override;
    int Duplicate(int f) override { return Fails() ? -1 : duplicate = FileCalls::Duplicate(f); }
    int Close(int f) override;
    int Link(int f, int d, const char* n) override { return Fails() ? -1 : FileCalls::Link(f, d, n); }
    int Rename(int d, const char* a, const char* b) override;
    int Remove(int d, const char* n) override;
    int Stat(int f, struct stat& s) override { return Fails() ? -1 : FileCalls::Stat(f, s); }
    int StatName(int d, const char* n, struct stat& s) override;
    int MayWrite(int d, const char* n) override { return Fails() ? -1 : FileCalls::MayWrite(d, n); }
    ssize_t ReadLink(const char* p, char* t, std::size_t n) override;

protected:
    /// What the n-th call meets with; returns for one that is to fail.
    virtual void Meet() { }

private:
    bool Fails();

    Unnamed unnamed;
    int nth, error, made = 0, duplicate = -1;
    bool mustBeTold = false, mayLeaveAName = false;
};

/// Has the program write through the calls given, from here to its end.
class Replaced {
public:
    explicit Replaced(FileCalls& calls) { FileCalls::Replace(&calls); }
    ~Replaced() { FileCalls::Replace(nullptr); }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;
};

} // namespace veltrane::tests
