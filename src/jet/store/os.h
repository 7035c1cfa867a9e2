#pragma once
// The engine's window on the operating system, in the manner of SQLite's
// VFS: everything the page store, the journal and the locks ask of a file
// goes through this one small interface, which os_posix.cpp and
// os_win32.cpp implement (the build compiles the one of its system). Above
// this header the engine holds no system call and no #ifdef.
//
// Paths are the engine's text: bytes on POSIX, UTF-8 on Windows (made wide
// here, so names outside the ANSI code page open as well).
//
// Failures are answered, not thrown: a call that fails returns false (or an
// unopened File) and leaves the system's reason in lastError() or in the
// text it was given, so the caller words the message it owes its own caller.
// Interrupted calls (EINTR) are retried here and nowhere else.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace jet::os {

enum class OpenMode {
    ReadOnly,
    ReadWrite,       // the file must exist
    CreateTruncate,  // made, or emptied when it exists
};

enum class LockMode { Shared, Exclusive };

enum class LockResult { Locked, Busy, Failed };

class File {
  public:
    File() = default;
    // Opens path; isOpen() tells whether it worked, missing() whether the
    // reason was that the file (or its directory) is not there. The handle
    // is never inherited by a program started from this process: the file's
    // locks must not outlive it there.
    File(const std::string& path, OpenMode mode);
    ~File();
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOpen() const;
    bool missing() const { return missing_; }
    const std::string& lastError() const { return error_; }
    void close();

    // Reads exactly n bytes at off; false at the end of the file or on an error.
    bool read(void* buf, std::size_t n, std::uint64_t off);
    // Writes exactly n bytes at off, extending the file when needed.
    bool write(const void* buf, std::size_t n, std::uint64_t off);
    bool sync();
    bool size(std::uint64_t& bytes);
    bool truncate(std::uint64_t bytes);

    // A lock on the single byte at offset (the byte need not exist). With
    // wait, blocks until the lock is granted; otherwise answers Busy when
    // another holder has it. Locks of one File are its own: two Files of one
    // process exclude each other, and closing one does not drop another's.
    LockResult lock(std::uint64_t offset, LockMode mode, bool wait);
    void unlock(std::uint64_t offset);

  private:
    void fail();  // records the system's reason for the last failed call
    std::intptr_t handle_ = -1;
    bool missing_ = false;
    std::string error_;
    // The byte locks this File holds. A POSIX lock on a held byte converts
    // it; Windows stacks a second lock instead, so there the conversion is
    // made by hand from this list.
    struct Held {
        std::uint64_t offset;
        LockMode mode;
    };
    std::vector<Held> held_;
};

bool exists(const std::string& path);
// Removes a file; a file that is not there counts as removed.
bool remove(const std::string& path, std::string& error);
// Makes a new or removed directory entry of path durable where the system
// needs the directory synced for that (POSIX); a no-op elsewhere.
void syncDirectoryOf(const std::string& path);

// The flushes to disk asked of the system so far by this process (File::sync
// and the directory syncs that reach the system), for benchmarks that count
// what a commit pays.
std::uint64_t syncCalls();

// A file server, for benchmarks and tests: every read and write call of a
// File (the journal's too) waits this long first, as each is a round trip
// over the network there. Zero, the program's setting, adds nothing but an
// atomic load. The calls are counted either way.
void setCallDelay(std::chrono::microseconds perCall);
struct CallCounts {
    std::uint64_t reads = 0, writes = 0;
};
CallCounts callCounts();
// Called by File::read and File::write of each system's layer.
void countCall(bool write);

}  // namespace jet::os
