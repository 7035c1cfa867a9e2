#include "db/connection.h"

#include <algorithm>
#include <cctype>

#include "jet/sql/text_rules.h"

namespace db {

namespace {
std::string lowerAscii(std::string s) {
    for (auto& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}
std::string trim(const std::string& s) {
    std::size_t b = s.find_first_not_of(' ');
    if (b == std::string::npos) return {};
    std::size_t e = s.find_last_not_of(' ');
    return s.substr(b, e - b + 1);
}
}  // namespace

std::map<std::string, std::string> parseConnectionString(const std::string& text) {
    std::map<std::string, std::string> out;
    std::size_t i = 0;
    while (i < text.size()) {
        std::size_t semi = text.find(';', i);
        std::string part = text.substr(i, semi == std::string::npos ? std::string::npos : semi - i);
        std::size_t eq = part.find('=');
        if (eq != std::string::npos)
            out[lowerAscii(trim(part.substr(0, eq)))] = trim(part.substr(eq + 1));
        if (semi == std::string::npos) break;
        i = semi + 1;
    }
    return out;
}

void Connection::setProperty(const std::string& name, const std::string& value) {
    properties_[lowerAscii(name)] = value;
}

std::string Connection::property(const std::string& name) const {
    auto it = properties_.find(lowerAscii(name));
    return it == properties_.end() ? std::string() : it->second;
}

void Connection::open(const std::string& connectionString) {
    if (storage_) throw adoerrors::objectOpen();
    for (const auto& [k, v] : parseConnectionString(connectionString)) {
        if (k == "provider")
            provider = v;
        else
            properties_[k] = v;
    }
    std::string p = lowerAscii(provider);
    if (p.rfind("microsoft.jet.oledb.4.0", 0) != 0) throw adoerrors::providerNotFound();
    std::string path = property("Data Source");
    if (path.empty()) throw sql::errors::fileNotFound(path);
    storage_ = opener_(path, false);
    path_ = path;
}

void Connection::openStorage(std::shared_ptr<sql::Storage> storage, const std::string& path) {
    if (storage_) throw adoerrors::objectOpen();
    storage_ = std::move(storage);
    path_ = path;
}

void Connection::close() {
    if (!storage_) throw adoerrors::objectClosed();
    storage_.reset();
}

long Connection::execute(const std::string& sql) {
    if (!storage_) throw adoerrors::objectClosed();
    sql::Executor ex(storage_);
    return ex.execute(sql).rowsAffected;
}

std::shared_ptr<sql::Storage> Connection::storage() const {
    if (!storage_) throw adoerrors::objectClosed();
    return storage_;
}

}  // namespace db
