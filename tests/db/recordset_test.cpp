// Record sets as the navigation model and the Folder and Page management use them.
#include "db/recordset.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "catalogue_fixture.h"
#include "db/connection.h"
#include "db/memory_opener.h"
#include "jet/sql/error.h"
#include "jet/sql/memory_storage.h"
#include "jet/sql/text_rules.h"
#include "tabelle.h"

namespace {

const std::string kLib = "C:\\Lib\\dbTessara.mdb";

using db::memoryOpener;

class Records : public ::testing::Test {
  protected:
    void SetUp() override {
        files = std::make_shared<sql::MemoryFiles>();
        lib = files->create(kLib);
        cat = fixture::fill(*lib);
        con = std::make_unique<db::Connection>(memoryOpener(files));
        con->open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + kLib);
    }
    std::string blockSql(int ordnerId) {
        return std::string("SELECT Nr, Block, OrdnerID,  SlideLib, BlkName0, ") +
               "M0, M1, M2, M3, M4, M5, M6, M7, M8, M9, AX1, AX2, AX3, AX4, LAYER, LYCOLOR, LYLINE "
               "FROM tblBlockInfo " +
               "WHERE OrdnerID = " + std::to_string(ordnerId);
    }
    std::shared_ptr<sql::MemoryFiles> files;
    std::shared_ptr<sql::MemoryStorage> lib;
    fixture::Catalogue cat;
    std::unique_ptr<db::Connection> con;
};

TEST_F(Records, NavigationEofBofAndRecordCount) {
    db::Recordset rs;
    EXPECT_EQ(rs.state(), db::adStateClosed);
    rs.open("SELECT * FROM tblOrdner", *con, db::adOpenKeyset, db::adLockOptimistic);
    EXPECT_EQ(rs.state(), db::adStateOpen);
    rs.moveLast();
    EXPECT_EQ(rs.recordCount(), 4);
    EXPECT_EQ(rs.absolutePosition(), 4);
    EXPECT_EQ(rs.text("OrdnerNr"), "003");
    rs.moveFirst();
    std::vector<std::string> names;
    while (!rs.eof()) {
        names.push_back(rs.text("Ordnername"));
        rs.moveNext();
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Standard-Ordner", "Armaturen", "Rohrleitungen",
                                               "Öl-Anlagen"}));
    EXPECT_EQ(rs.absolutePosition(), db::adPosEOF);
    EXPECT_THROW(rs.moveNext(), sql::Error);
    EXPECT_THROW(rs.value("Nr"), sql::Error);
    rs.movePrevious();
    EXPECT_EQ(rs.text("OrdnerNr"), "003");
    rs.setAbsolutePosition(3);
    EXPECT_EQ(rs.text("OrdnerNr"), "002");
    EXPECT_EQ(rs.absolutePosition(), 3);
    EXPECT_THROW(rs.setAbsolutePosition(0), sql::Error);
    EXPECT_THROW(rs.setAbsolutePosition(5), sql::Error);
    rs.moveFirst();
    rs.movePrevious();
    EXPECT_TRUE(rs.bof());
    EXPECT_FALSE(rs.eof());
    EXPECT_EQ(rs.absolutePosition(), db::adPosBOF);
    EXPECT_THROW(rs.value("nichtda"), sql::Error);
    rs.close();
    EXPECT_THROW(rs.recordCount(), sql::Error);
    // An empty record set is at both ends at once.
    rs.open("SELECT * FROM tblBlockInfo WHERE OrdnerID = 1", *con, db::adOpenKeyset,
            db::adLockOptimistic);
    EXPECT_TRUE(rs.eof() && rs.bof());
    EXPECT_EQ(rs.recordCount(), 0);
    EXPECT_EQ(rs.absolutePosition(), db::adPosUnknown);
    EXPECT_THROW(rs.find("Block Like '0000000'"), sql::Error);
}

TEST_F(Records, FindCriteriaShapes) {
    db::Recordset rs;
    rs.open("SELECT * FROM tblOrdner", *con, db::adOpenKeyset, db::adLockOptimistic);
    for (const auto& c : tessara::test::tabelle("db/golden/find.txt")) {
        rs.moveFirst();
        const long position = std::stol(c.at(1));
        bool found = rs.find(c.at(0));
        EXPECT_EQ(found, position != 0) << c[0];
        if (found)
            EXPECT_EQ(rs.absolutePosition(), position) << c[0];
        else
            EXPECT_TRUE(rs.eof()) << c[0];
    }
    rs.moveFirst();
    EXPECT_THROW(rs.find("Gibts = 1"), sql::Error);
    EXPECT_THROW(rs.find("Nr = 1 AND Nr = 2"), sql::Error);  // Find takes a single criterion
    EXPECT_THROW(rs.find("Nr 1"), sql::Error);
}

// A Find of one text (LIKE without wildcards, = on a Text column) lands
// where testing row after row with Jet's text comparison lands: from every
// row, both ways, with skips, and again after the record set changed. This
// also covers searching on from the current row and not finding behind it.
TEST_F(Records, FindOfOneTextAgreesWithTestingEveryRow) {
    db::Recordset rs;
    rs.open(blockSql(2), *con, db::adOpenKeyset, db::adLockOptimistic);
    auto agree = [&](const std::string& field, const std::vector<std::string>& texts) {
        std::vector<sql::Value> values;
        for (rs.moveFirst(); !rs.eof(); rs.moveNext()) values.push_back(rs.value(field));
        const long n = static_cast<long>(values.size());
        for (const auto& text : texts)
            for (const char* op : {" Like '", " = '"})
                for (long from = 0; from < n; ++from)
                    for (long skip : {0L, 1L, 3L})
                        for (auto dir : {db::adSearchForward, db::adSearchBackward}) {
                            const long step = dir == db::adSearchBackward ? -1 : 1;
                            long want = -1;
                            for (long i = from + step * skip; want < 0 && i >= 0 && i < n;
                                 i += step)
                                if (!values[i].isNull() &&
                                    sql::textEquals(values[i].toString(), text))
                                    want = i;
                            rs.setAbsolutePosition(from + 1);
                            const std::string crit = field + op + text + "'";
                            ASSERT_EQ(rs.find(crit, skip, dir), want >= 0)
                                << crit << " from " << from;
                            if (want >= 0)
                                ASSERT_EQ(rs.absolutePosition(), want + 1)
                                    << crit << " from " << from;
                            else
                                ASSERT_TRUE(dir == db::adSearchBackward ? rs.bof() : rs.eof())
                                    << crit;
                        }
    };
    const std::vector<std::string> materials{"stahl", "EDELSTAHL", "Messing", "pvc", "Gusseisen"};
    agree("M3", materials);
    agree("M0", {"ventil gross 33", "VENTIL GROß 33", "straßenkappe dn16", "Öltank DN13"});

    // After each change the record set makes itself, a filter and a requery.
    rs.setAbsolutePosition(5);
    rs.setValue("M3", "Gusseisen");
    rs.update();
    agree("M3", materials);
    rs.setAbsolutePosition(9);
    rs.deleteCurrent();
    agree("M3", materials);
    rs.addNew();
    rs.setValue("Block", "0019999");
    rs.setValue("OrdnerID", 2);
    rs.setValue("M3", "PVC");
    rs.update();
    agree("M3", materials);
    rs.setFilter("M0 Like 'V*'");
    agree("M3", materials);
    con->execute("UPDATE tblBlockInfo SET M3 = 'Messing' WHERE M3 = 'Stahl'");
    rs.requery();
    agree("M3", materials);
}

TEST_F(Records, FilterAndRemovingIt) {
    db::Recordset rs;
    rs.open("SELECT * FROM [tblSeiten]", *con, db::adOpenKeyset, db::adLockOptimistic);
    long all = rs.recordCount();
    rs.setFilter("[NrTblOrdner] = 3");
    EXPECT_EQ(rs.recordCount(), 5);
    EXPECT_EQ(rs.absolutePosition(), 1);
    while (!rs.eof()) {
        EXPECT_EQ(rs.value("NrTblOrdner").asInt(), 3);
        rs.moveNext();
    }
    rs.setFilter("NrTblOrdner = 2 AND (SeitenName = 'a' OR SeitenName Like '1*')");
    EXPECT_EQ(rs.recordCount(), 3);  // "A", "10", "1"
    rs.setFilter("SeitenName = 'gibt es nicht'");
    EXPECT_EQ(rs.recordCount(), 0);
    EXPECT_TRUE(rs.eof());
    EXPECT_THROW(rs.setFilter("Gibts = 1"), sql::Error);
    rs.clearFilter();
    EXPECT_EQ(rs.recordCount(), all);
    EXPECT_EQ(rs.filter(), "");
}

TEST_F(Records, AddNewWritesThroughAndGetsItsNumber) {
    db::Recordset rs;
    rs.open("SELECT * FROM tblOrdner", *con, db::adOpenKeyset, db::adLockOptimistic);
    rs.addNew();
    rs.setValue("OrdnerNr", "004");
    rs.setValue("Ordnername", "Neu");
    rs.setValue("NrtblDefMenue", 1);
    rs.update();
    EXPECT_EQ(rs.value("Nr").asInt(), 5);
    EXPECT_EQ(rs.recordCount(), 5);
    EXPECT_EQ(rs.absolutePosition(), 5);
    // A second write on the same row, as a new Folder gets its sort number.
    rs.setValue("NrTblRechte", rs.value("Nr"));
    rs.update();

    db::Recordset check;
    check.open("SELECT * FROM tblOrdner WHERE Ordnername LIKE 'neu'", *con, db::adOpenStatic,
               db::adLockReadOnly);
    ASSERT_EQ(check.recordCount(), 1);
    EXPECT_EQ(check.text("OrdnerNr"), "004");
    EXPECT_EQ(check.value("NrTblRechte").asInt(), 5);
    EXPECT_TRUE(check.value("OrdnerRechte").isNull());

    // A value that does not fit is refused when assigned; nothing is written.
    rs.addNew();
    EXPECT_THROW(rs.setValue("OrdnerNr", "12345"), sql::Error);
    rs.cancelUpdate();
    rs.requery();
    EXPECT_EQ(rs.recordCount(), 5);
}

// The base row is found by its key even when the key is not selected; moving
// off an edited row saves it.
TEST_F(Records, EditsWriteThroughByKeyAndOnMovingOff) {
    db::Recordset rs;
    rs.open("SELECT Ordnername FROM tblOrdner WHERE OrdnerNr LIKE '002'", *con, db::adOpenKeyset,
            db::adLockOptimistic);
    ASSERT_EQ(rs.recordCount(), 1);
    rs.setValue("Ordnername", "Rohre");
    rs.update();
    rs.close();
    rs.open("SELECT Nr, SeitenName FROM tblSeiten WHERE NrTblOrdner = 2 ORDER BY SeitenName", *con,
            db::adOpenKeyset, db::adLockOptimistic);
    rs.setValue("SeitenName", "Eins");
    rs.moveNext();
    sql::Executor ex(con->storage());
    auto rohre = ex.query("SELECT Nr FROM tblOrdner WHERE Ordnername = 'Rohre'").rows;
    EXPECT_EQ(rohre.size() == 1 ? rohre[0][0].asInt() : -1, 3);
    EXPECT_EQ(ex.query("SELECT Nr FROM tblSeiten WHERE SeitenName = 'eins'").rows.size(), 1u);
}

TEST_F(Records, DeleteWritesThroughAndNavigationSkipsTheRow) {
    db::Recordset rs;
    rs.open(
        "SELECT Nr, SeitenNr, SeitenName, NrTblOrdner From tblSeiten WHERE NrTblOrdner = 3 ORDER "
        "BY SeitenName",
        *con, db::adOpenKeyset, db::adLockOptimistic);
    ASSERT_TRUE(rs.find("SeitenNr Like '3'"));  // Page "10"
    rs.deleteCurrent();
    EXPECT_THROW(rs.value("SeitenName"), sql::Error);
    EXPECT_EQ(rs.recordCount(), 4);
    rs.moveNext();
    EXPECT_EQ(rs.text("SeitenName"), "2");
    rs.movePrevious();
    EXPECT_EQ(rs.text("SeitenName"), "1");
    EXPECT_EQ(con->storage()->table("tblSeiten")->columns().size(), 4u);
    db::Recordset check;
    check.open("SELECT * FROM tblSeiten WHERE NrTblOrdner = 3", *con);
    EXPECT_EQ(check.recordCount(), 4);
}

TEST_F(Records, RequerySeesChangesMadeThroughTheConnection) {
    db::Recordset rs;
    rs.open(blockSql(2), *con, db::adOpenKeyset, db::adLockOptimistic);
    long before = rs.recordCount();
    rs.setFilter("M3 = 'Stahl'");
    con->execute("UPDATE tblBlockInfo SET OrdnerID = 2 WHERE OrdnerID = 3");
    rs.requery();
    EXPECT_LT(rs.recordCount(), before);  // the filter stays
    rs.clearFilter();
    EXPECT_EQ(rs.recordCount(),
              static_cast<long>(std::count_if(cat.blocks.begin(), cat.blocks.end(), [](auto& b) {
                  return b.ordnerId == 2 || b.ordnerId == 3;
              })));
}

TEST_F(Records, ReadOnlyRecordSetRefusesChanges) {
    db::Recordset rs;
    rs.open("SELECT * FROM tblOrdner", *con, db::adOpenForwardOnly, db::adLockReadOnly);
    EXPECT_THROW(rs.addNew(), sql::Error);
    EXPECT_THROW(rs.setValue("Ordnername", "x"), sql::Error);
    EXPECT_THROW(rs.deleteCurrent(), sql::Error);
    db::Recordset distinct;
    distinct.open("SELECT DISTINCT OrdnerID FROM tblBlockInfo", *con, db::adOpenKeyset,
                  db::adLockOptimistic);
    EXPECT_EQ(distinct.recordCount(), 3);
    EXPECT_THROW(distinct.setValue("OrdnerID", 1), sql::Error);
}

TEST(Connection, OpenModes) {
    auto files = std::make_shared<sql::MemoryFiles>();
    files->create("C:\\a.mdb");
    db::Connection con(memoryOpener(files));
    EXPECT_EQ(con.state(), db::adStateClosed);
    con.provider = "Microsoft.Jet.OLEDB.4.0";
    con.setProperty("Jet OLEDB:Engine Type", "5");
    con.setProperty("Data Source", "C:\\a.mdb");
    con.cursorLocation = db::adUseClient;
    con.open();
    EXPECT_EQ(con.state(), db::adStateOpen);
    EXPECT_THROW(con.open(), sql::Error);
    con.close();
    EXPECT_EQ(con.state(), db::adStateClosed);

    db::Connection server(memoryOpener(files));
    try {
        server.open(
            "Provider=SQLOLEDB.1; Integrated Security=SSPI; Persist Security Info=False; Initial "
            "Catalog=x; "
            "Data Source=srv;User ID=u;Password=p");
        FAIL();
    } catch (const sql::Error& e) {
        EXPECT_EQ(std::string(e.what()),
                  "Provider cannot be found. It may not be properly installed.");
    }
    EXPECT_EQ(server.state(), db::adStateClosed);

    db::Connection missing(memoryOpener(files));
    EXPECT_THROW(missing.open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=C:\\fehlt.mdb"),
                 sql::Error);
    EXPECT_EQ(missing.state(), db::adStateClosed);
    EXPECT_THROW(missing.execute("DELETE FROM x"), sql::Error);
}

}  // namespace
