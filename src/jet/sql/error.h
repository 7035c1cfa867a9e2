#pragma once
// Errors of the SQL layer and the record sets, in Jet's and ADO's own words.
#include <string>

#include "jet/format/error.h"

namespace sql {

// Derived from the engine's error, so one catch takes both. number() is
// Jet's own error number (3075, 3078 …), hresult() the value ADO reports for
// it through the Jet OLE DB provider.
class Error : public jet::Error {
  public:
    Error(const std::string& message, long hresult, int jetNumber)
        : jet::Error(message, jetNumber), hresult_(hresult) {}
    long hresult() const { return hresult_; }

  private:
    long hresult_;
};

// A statement that Jet would accept but this engine does not run.
class Unsupported : public Error {
  public:
    explicit Unsupported(const std::string& what)
        : Error("The statement uses '" + what + "', which this database engine does not support.",
                -2147217837L, 0) {}  // DB_E_NOTSUPPORTED
};

namespace errors {
// ADO's HRESULTs for Jet's provider.
constexpr long kErrorsInCommand = -2147217900L;  // 0x80040E14
constexpr long kNoValueGiven = -2147217904L;     // 0x80040E10
constexpr long kTableNotFound = -2147217865L;    // 0x80040E37
constexpr long kTypeMismatch = -2147217913L;     // 0x80040E07
constexpr long kIntegrity = -2147467259L;        // 0x80004005, Jet's general failure

Error syntaxFrom();
Error syntaxJoin();
Error ambiguousField(const std::string& field);
Error syntaxQueryExpression(const std::string& expr);
Error syntaxMissingOperator(const std::string& expr);
Error syntaxString(const std::string& expr);
Error syntaxDate(const std::string& expr);
Error syntaxOrderBy();
Error syntaxGroupBy();
Error queryTooComplex();
Error aggregateInWhere(const std::string& clause);
Error aggregateInExpression(const std::string& expr);
Error aggregateInGroupBy(const std::string& expr);
Error notInAggregate(const std::string& expr);
Error groupOnStar();
Error syntaxInsert();
Error syntaxUpdate();
Error syntaxDelete();
Error syntaxAlterTable();
Error syntaxCreateIndex();
Error syntaxFieldDefinition();
Error selectReservedWord();
Error invalidStatement();
Error noValueGiven();
Error tableNotFound(const std::string& name);
Error tableExists(const std::string& name);
Error fieldExists(const std::string& field, const std::string& table);
Error indexExists(const std::string& table, const std::string& index);
Error invalidIndexField(const std::string& field);
Error unknownInsertField(const std::string& field);
Error duplicateDestination(const std::string& field);  // a column set twice
Error valueCountMismatch();
Error typeMismatch();
Error fieldTooSmall();
Error numericOverflow();
Error fileNotFound(const std::string& path);
Error subqueryFields();
Error duplicateKey();
Error nullInRequired(const std::string& field);  // field: "Table.Column"
Error nullKey();
}  // namespace errors

}  // namespace sql
