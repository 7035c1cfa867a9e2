#include "db/pg/pg_driver.h"

namespace db::pg {

// Linked at build time: there whenever the program runs.
void requireDriver() {}

}  // namespace db::pg
