#pragma once
// Folder rights kept by the catalogue server itself, so that a login not
// named in a Folder's OrdnerRechte cannot read or change the Folder's rows
// even with psql or any other client.
#include <functional>
#include <string>
#include <vector>

namespace db::pg {

// The statements that put the rights on the catalogue in schema: run once
// by the role that owns the catalogue's tables, after they are filled. has
// answers whether a table is there (older libraries lack some).
std::vector<std::string> folderRightsSql(const std::string& schema,
                                         const std::function<bool(const std::string&)>& has);

}  // namespace db::pg
