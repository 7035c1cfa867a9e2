#include "jet/sql/error.h"

namespace sql::errors {

namespace {
Error cmd(const std::string& m, int code) { return Error(m, kErrorsInCommand, code); }
}  // namespace

Error syntaxFrom() { return cmd("Syntax error in FROM clause.", 3131); }
Error syntaxJoin() { return cmd("Syntax error in JOIN operation.", 3135); }
Error ambiguousField(const std::string& f) {
    return cmd(
        "The specified field '" + f +
            "' could refer to more than one table listed in the FROM clause of your SQL statement.",
        3079);
}
Error syntaxQueryExpression(const std::string& e) {
    return cmd("Syntax error in query expression '" + e + "'.", 3075);
}
Error syntaxMissingOperator(const std::string& e) {
    return cmd("Syntax error (missing operator) in query expression '" + e + "'.", 3075);
}
Error syntaxString(const std::string& e) {
    return cmd("Syntax error in string in query expression '" + e + "'.", 3075);
}
Error syntaxDate(const std::string& e) {
    return cmd("Syntax error in date in query expression '" + e + "'.", 3075);
}
Error syntaxGroupBy() { return cmd("Syntax error in GROUP BY clause.", 3132); }
Error queryTooComplex() { return cmd("Query is too complex.", 3360); }
Error aggregateInWhere(const std::string& c) {
    return cmd("Cannot have aggregate function in WHERE clause (" + c + ").", 3096);
}
Error aggregateInExpression(const std::string& e) {
    return cmd("Cannot have aggregate function in expression (" + e + ").", 3095);
}
Error aggregateInGroupBy(const std::string& e) {
    return cmd("Cannot have aggregate function in GROUP BY clause (" + e + ").", 3097);
}
Error notInAggregate(const std::string& e) {
    return cmd("You tried to execute a query that does not include the specified expression '" + e +
                   "' as part of an aggregate function.",
               3122);
}
Error groupOnStar() { return cmd("Cannot group on fields selected with '*'.", 3120); }
Error syntaxOrderBy() { return cmd("Syntax error in ORDER BY clause.", 3138); }
Error syntaxInsert() { return cmd("Syntax error in INSERT INTO statement.", 3134); }
Error syntaxUpdate() { return cmd("Syntax error in UPDATE statement.", 3144); }
Error syntaxDelete() { return cmd("Syntax error in DELETE statement.", 3145); }
Error syntaxAlterTable() { return cmd("Syntax error in ALTER TABLE statement.", 3293); }
Error syntaxCreateIndex() { return cmd("Syntax error in CREATE INDEX statement.", 3291); }
Error syntaxFieldDefinition() { return cmd("Syntax error in field definition.", 3292); }
Error selectReservedWord() {
    return cmd(
        "The SELECT statement includes a reserved word or an argument name that is misspelled or "
        "missing, or the "
        "punctuation is incorrect.",
        3141);
}
Error invalidStatement() {
    return cmd(
        "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'.",
        3129);
}
Error noValueGiven() {
    return Error("No value given for one or more required parameters.", kNoValueGiven, 3061);
}
Error tableNotFound(const std::string& n) {
    return Error("The Microsoft Jet database engine cannot find the input table or query '" + n +
                     "'.  Make sure it exists and that its name is spelled correctly.",
                 kTableNotFound, 3078);
}
Error tableExists(const std::string& n) { return cmd("Table '" + n + "' already exists.", 3010); }
Error fieldExists(const std::string& f, const std::string& t) {
    return cmd("Field '" + f + "' already exists in table '" + t + "'.", 3191);
}
Error indexExists(const std::string& t, const std::string& i) {
    return cmd("Table '" + t + "' already has an index named '" + i + "'.", 3375);
}
Error invalidIndexField(const std::string& f) {
    return cmd("Invalid field definition '" + f + "' in definition of index or relationship.",
               3283);
}
Error unknownInsertField(const std::string& f) {
    return cmd("The INSERT INTO statement contains the following unknown field name: '" + f +
                   "'.  Make sure you have typed the name correctly, and try the operation again.",
               3127);
}
Error duplicateDestination(const std::string& f) {
    return cmd("Duplicate output destination '" + f + "'.", 3063);
}
Error valueCountMismatch() {
    return cmd("Number of query values and destination fields are not the same.", 3346);
}
Error typeMismatch() {
    return Error("Data type mismatch in criteria expression.", kTypeMismatch, 3464);
}
Error fieldTooSmall() {
    return Error(
        "The field is too small to accept the amount of data you attempted to add.  Try inserting "
        "or "
        "pasting less data.",
        kIntegrity, 3163);
}
Error numericOverflow() { return Error("Numeric field overflow.", kIntegrity, 3349); }
Error fileNotFound(const std::string& p) {
    return Error("Could not find file '" + p + "'.", kIntegrity, 3024);
}
Error subqueryFields() {
    return cmd(
        "You have written a subquery that can return more than one field without using the EXISTS "
        "reserved "
        "word in the main query's FROM clause.  Revise the SELECT statement of the subquery to "
        "request only "
        "one field.",
        3306);
}
Error duplicateKey() {
    return Error(
        "The changes you requested to the table were not successful because they would create "
        "duplicate "
        "values in the index, primary key, or relationship.  Change the data in the field or "
        "fields that "
        "contain duplicate data, remove the index, or redefine the index to permit duplicate "
        "entries and "
        "try again.",
        kIntegrity, 3022);
}
Error nullInRequired(const std::string& f) {
    return Error("You must enter a value in the '" + f + "' field.", kIntegrity, 3314);
}
Error nullKey() {
    return Error("Index or primary key cannot contain a Null value.", kIntegrity, 3058);
}

}  // namespace sql::errors
