#pragma once
// The calls of platform/golden/registry.txt on one registry backend, each
// result compared with the one the file gives.
#include <gtest/gtest.h>

#include <string>

#include "platform/registry.h"
#include "tabelle.h"

namespace platform {

inline void registryVertragPruefen(Registry& r) {
    for (const auto& f : tessara::test::tabelle("platform/golden/registry.txt")) {
        SCOPED_TRACE(f.at(0) + " " + f.at(2) + " " + f.at(3));
        const Hive h = f.at(1) == "HKLM" ? Hive::LocalMachine : Hive::CurrentUser;
        const std::string &c = f[0], &k = f[2], &n = f.at(3), &v = f.at(4);
        auto ja = [](bool b) { return std::string(b ? "ja" : "nein"); };
        std::string ist;
        if (c == "writeString") {
            ist = ja(r.writeString(h, k, n, v));
        } else if (c == "writeDword") {
            ist = ja(r.writeDword(h, k, n, static_cast<std::uint32_t>(std::stoul(v, nullptr, 0))));
        } else if (c == "readString") {
            ist = r.readString(h, k, n).value_or("-");
        } else if (c == "readDword") {
            const auto d = r.readDword(h, k, n);
            ist = d ? std::to_string(*d) : "-";
        } else if (c == "keyExists") {
            ist = ja(r.keyExists(h, k));
        } else if (c == "createKey") {
            ist = ja(r.createKey(h, k));
        } else if (c == "deleteValue") {
            ist = ja(r.deleteValue(h, k, n));
        } else {
            ASSERT_EQ(c, "valueNames");
            for (const auto& name : r.valueNames(h, k)) ist += (ist.empty() ? "" : ",") + name;
        }
        EXPECT_EQ(ist, f.at(5));
    }
}

}  // namespace platform
