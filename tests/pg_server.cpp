#include "pg_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "befehl.h"

namespace fs = std::filesystem;

namespace tessara::test {

namespace {

int freeLoopbackPort() {
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t n = sizeof a;
    int port = 0;
    if (::bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0 &&
        ::getsockname(s, reinterpret_cast<sockaddr*>(&a), &n) == 0)
        port = ntohs(a.sin_port);
    ::close(s);
    return port;
}

std::string shellQuoted(const std::string& s) {
    std::string q = "'";
    for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

std::string newestBin() {
    std::string best;
    if (!fs::exists("/usr/lib/postgresql")) return best;
    for (const auto& e : fs::directory_iterator("/usr/lib/postgresql"))
        if (fs::exists(e.path() / "bin" / "initdb") && e.path().string() > best)
            best = e.path().string();
    return best.empty() ? best : best + "/bin/";
}

}  // namespace

std::string PgServer::run(const std::string& command, int* code) {
    return befehlsAusgabe(asUser_ + command + " 2>&1", code);
}

PgServer::PgServer() {
    char tmpl[] = "/tmp/tessara_pg_XXXXXX";
    if (!::mkdtemp(tmpl)) {
        error_ = "no temporary directory";
        return;
    }
    dir_ = tmpl;
    startIn(true);
}

PgServer::PgServer(const std::string& keepIn) : dir_(keepIn), keep_(true) {
    std::error_code ec;
    fs::create_directories(dir_, ec);
    startIn(!fs::exists(dir_ + "/data/PG_VERSION"));
}

void PgServer::startIn(bool fresh) {
    bin_ = newestBin();
    if (bin_.empty()) {
        error_ = "no PostgreSQL server under /usr/lib/postgresql (scripts/setup-deps installs it)";
        return;
    }
    if (::geteuid() == 0) {
        const passwd* pw = ::getpwnam("postgres");
        if (!pw) {
            error_ = "running as root and there is no user \"postgres\" to run the server as";
            return;
        }
        if (::chown(dir_.c_str(), pw->pw_uid, pw->pw_gid) != 0) {
            error_ = "cannot hand " + dir_ + " to the user postgres";
            return;
        }
        asUser_ = "runuser -u postgres -- ";
    }
    port_ = freeLoopbackPort();
    int code = 0;
    if (fresh) {
        std::ofstream(dir_ + "/pw") << kPassword << "\n";
        fs::permissions(dir_ + "/pw",
                        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
        std::string out =
            run(bin_ + "initdb -D " + dir_ + "/data -U " + kUser + " --pwfile=" + dir_ +
                    "/pw -E UTF8 --locale=C.UTF-8 --auth-local=trust "
                    "--auth-host=scram-sha-256",
                &code);
        if (code != 0) {
            error_ = "initdb failed: " + out;
            return;
        }
    }
    // A run that was killed leaves its server running on the kept cluster.
    if (!fresh && fs::exists(dir_ + "/data/postmaster.pid"))
        run(bin_ + "pg_ctl stop -m fast -w -D " + dir_ + "/data", nullptr);
    error_ = start();
    if (!error_.empty()) return;
    ::setenv("PGPASSWORD", kPassword, 1);
}

PgServer::~PgServer() {
    if (started_) run(bin_ + "pg_ctl stop -m fast -w -D " + dir_ + "/data", nullptr);
    if (!dir_.empty() && !keep_) {
        std::error_code ec;
        fs::remove_all(dir_, ec);
    }
}

std::string PgServer::start() {
    int code = 0;
    const std::string out =
        run(bin_ + "pg_ctl start -w -D " + dir_ + "/data -l " + dir_ + "/log -o \"-k " + dir_ +
                " -p " + std::to_string(port_) + " -c listen_addresses=127.0.0.1\"",
            &code);
    if (code != 0) return "pg_ctl start failed: " + out + befehlsAusgabe("cat " + dir_ + "/log");
    started_ = true;
    return {};
}

std::string PgServer::stopFast() {
    int code = 0;
    const std::string out = run(bin_ + "pg_ctl stop -m fast -w -D " + dir_ + "/data", &code);
    if (code != 0) return "pg_ctl stop failed: " + out;
    started_ = false;
    return {};
}

std::string PgServer::createDatabase(const std::string& name) {
    int code = 0;
    const std::string out = run(
        bin_ + "createdb -h " + dir_ + " -p " + std::to_string(port_) + " -U " + kUser + " " + name,
        &code);
    return code == 0 ? std::string() : "createdb " + name + ": " + out;
}

std::string PgServer::psql(const std::string& database, const std::string& statement, int* code,
                           const std::string& user) {
    return run(bin_ + "psql -X -q -At -v ON_ERROR_STOP=1 -h " + dir_ + " -p " +
                   std::to_string(port_) + " -U " + user + " -d " + database + " -c " +
                   shellQuoted(statement),
               code);
}

std::string PgServer::iniSection(const std::string& database, const std::string& user) const {
    return "[Server]\r\nhost=127.0.0.1\r\nport=" + std::to_string(port_) +
           "\r\ndatabase=" + database + "\r\nuser=" + user + "\r\n";
}

}  // namespace tessara::test
