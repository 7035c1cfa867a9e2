#pragma once
// Where libpq comes from. The Linux build links it; the Windows build has no
// import library to link (none is made for MinGW) and takes the libpq.dll of
// a PostgreSQL client installation when the first server catalogue is opened,
// so that the program starts, and opens its .mdb libraries, on a machine
// without one.

namespace db::pg {

// Throws db::ServerError (ServerFault::NoDriver) saying what is missing when
// libpq cannot be had; every other libpq call comes after this one.
void requireDriver();

}  // namespace db::pg
