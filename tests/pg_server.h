#pragma once
// A private PostgreSQL server for one test process: initdb into a fresh
// directory, started on a free loopback port, stopped (fast) at the end.
// initdb refuses to run as root, so under root the server runs as the
// "postgres" account that Debian's package creates. Shared by the tests and
// the benchmarks, which keep a filled cluster between runs.
#include <string>

namespace tessara::test {

class PgServer {
  public:
    static constexpr const char* kUser = "tessara";
    static constexpr const char* kPassword = "geheim";

    PgServer();
    // The cluster in keepIn (made there when absent, kept at the end), so
    // that what was loaded into it once serves later runs too.
    explicit PgServer(const std::string& keepIn);
    ~PgServer();
    PgServer(const PgServer&) = delete;
    PgServer& operator=(const PgServer&) = delete;

    // Empty when the server runs; otherwise why it does not, with its log.
    const std::string& error() const { return error_; }
    int port() const { return port_; }
    // Makes a database owned by kUser; answers "" or the failure.
    std::string createDatabase(const std::string& name);
    // psql -At with the statement on the database, as user; its output.
    std::string psql(const std::string& database, const std::string& statement, int* code = nullptr,
                     const std::string& user = kUser);
    // Stops the server at once (fast shutdown: sessions are cut off, open
    // units rolled back) and starts it again on the same port.
    std::string stopFast();
    std::string start();
    // The "Server" section that names database on this server.
    std::string iniSection(const std::string& database, const std::string& user = kUser) const;

  private:
    std::string run(const std::string& command, int* code);
    void startIn(bool fresh);
    std::string dir_;
    bool keep_ = false;
    std::string bin_;
    std::string asUser_;  // "runuser -u postgres -- " under root
    int port_ = 0;
    bool started_ = false;
    std::string error_;
};

}  // namespace tessara::test
