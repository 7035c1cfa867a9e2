#include "db/pg/pg_rights.h"

#include "db/pg/pg_render.h"

namespace db::pg {

// How OrdnerRechte maps onto the server's roles:
// - Each name in the list (separated by ";", blanks around it dropped) is a
//   PostgreSQL login role, compared with the session's role without regard
//   to case, as the program compares the login name. A list that is empty
//   or holds "Alle" lets everybody in, as the window does. A library whose
//   dbTessara.ini names no user logs each workstation in under PGUSER or
//   its login name, the name the window's own filter compares.
// - The role that owns the tables (the one that pushed the catalogue) sees
//   every row: the server exempts a table's owner from its row policies, so
//   push, pull and repairs always see the whole catalogue. Superusers too.
// - Every other role that may connect to the database may read and write
//   the catalogue's tables; the policies then hide the rows of Folders it
//   is not listed for: the tblOrdner row, its Pages, its Blocks and their
//   Variants. Rows that belong to no Folder (a deleted Folder's Pages and
//   Blocks) stay visible, as they are in the file.
// - A row written by such a role must stay within Folders it may use: a
//   Page or Block cannot be put into a Folder it does not see.
// - The policies look at each row as it is, so Folders made and rights
//   changed after the push are kept the same way, and whatever the
//   workstation's longRechteverwaltung says: that switch only steers what
//   the window lists.
// - tblMarkierteBloecke (a workstation's marks, by block number) and
//   tblDefMenue belong to no Folder and stay open; changes of the tables
//   themselves (a column the program adds on use) remain the owner's.
// The Folders that are closed to a role are looked up by functions that run
// as the owner, since a policy's own look at tblOrdner would see only the
// Folders that are open, and hidden ones would seem not to exist.
std::vector<std::string> folderRightsSql(const std::string& schema,
                                         const std::function<bool(const std::string&)>& has) {
    const std::string definer =
        " LANGUAGE sql STABLE SECURITY DEFINER SET search_path = " + ident(schema) + ", pg_temp";
    if (!has("tblOrdner")) return {};
    std::vector<std::string> out = {
        "CREATE FUNCTION tessara_ordner_erlaubt(rechte text, login name) RETURNS boolean"
        " LANGUAGE sql IMMUTABLE AS $$"
        " SELECT coalesce(bool_or(lower(n) IN ('alle', lower(login::text))), true)"
        " FROM (SELECT btrim(x, E' \\t') AS n FROM unnest(string_to_array(rechte, ';')) x) l"
        " WHERE n <> '' $$",
        "CREATE FUNCTION tessara_ordner_gesperrt(login name) RETURNS SETOF integer" + definer +
            " AS $$ SELECT \"Nr\" FROM \"tblOrdner\""
            " WHERE NOT tessara_ordner_erlaubt(\"OrdnerRechte\", login) $$",
        "ALTER TABLE \"tblOrdner\" ENABLE ROW LEVEL SECURITY",
        "CREATE POLICY ordnerrechte ON \"tblOrdner\""
        " USING (tessara_ordner_erlaubt(\"OrdnerRechte\", current_user))"};
    const auto policy = [&](const std::string& table, const std::string& column,
                            const std::string& closed) {
        if (!has(table)) return;
        out.push_back("ALTER TABLE " + ident(table) + " ENABLE ROW LEVEL SECURITY");
        out.push_back("CREATE POLICY ordnerrechte ON " + ident(table) + " USING (" + ident(column) +
                      " IS NULL OR " + ident(column) + " NOT IN (SELECT " + closed +
                      "(current_user)))");
    };
    policy("tblSeiten", "NrTblOrdner", "tessara_ordner_gesperrt");
    policy("tblBlockInfo", "OrdnerID", "tessara_ordner_gesperrt");
    if (has("tblBlockInfo")) {
        out.push_back("CREATE FUNCTION tessara_bloecke_gesperrt(login name) RETURNS SETOF integer" +
                      definer +
                      " AS $$ SELECT \"Nr\" FROM \"tblBlockInfo\""
                      " WHERE \"OrdnerID\" IN (SELECT tessara_ordner_gesperrt(login)) $$");
        policy("tblVariationBloecke", "BlockID", "tessara_bloecke_gesperrt");
    }
    for (const std::string& grant :
         {"USAGE ON SCHEMA " + ident(schema),
          "SELECT, INSERT, UPDATE, DELETE ON ALL TABLES IN SCHEMA " + ident(schema),
          "USAGE, SELECT, UPDATE ON ALL SEQUENCES IN SCHEMA " + ident(schema)})
        out.push_back("GRANT " + grant + " TO PUBLIC");
    return out;
}

}  // namespace db::pg
