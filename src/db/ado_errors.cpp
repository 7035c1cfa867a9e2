#include "db/ado_types.h"

namespace db::adoerrors {

sql::Error noCurrentRecord() {
    return sql::Error(
        "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
        "requires a current "
        "record.",
        -2146825267L, 3021);
}
sql::Error notUpdatable() {
    return sql::Error(
        "Current Recordset does not support updating. This may be a limitation of the provider, or "
        "of the selected "
        "locktype.",
        -2146825037L, 3251);
}
sql::Error itemNotFound() {
    return sql::Error(
        "Item cannot be found in the collection corresponding to the requested name or ordinal.",
        -2146825023L, 3265);
}
sql::Error objectClosed() {
    return sql::Error("Operation is not allowed when the object is closed.", -2146824584L, 3704);
}
sql::Error objectOpen() {
    return sql::Error("Operation is not allowed when the object is open.", -2146824583L, 3705);
}
sql::Error badArguments() {
    return sql::Error(
        "Arguments are of the wrong type, are out of acceptable range, or are in conflict with one "
        "another.",
        -2146825287L, 3001);
}
sql::Error providerNotFound() {
    return sql::Error("Provider cannot be found. It may not be properly installed.", -2146824582L,
                      3706);
}
sql::Error deletedRow() {
    return sql::Error("Row handle referred to a deleted row or a row marked for deletion.",
                      -2147217885L, 0);
}

}  // namespace db::adoerrors
