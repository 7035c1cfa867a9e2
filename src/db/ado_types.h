#pragma once
// ADO's enumerations and errors, as the program's code refers to them.
#include <string>

#include "jet/sql/error.h"

namespace db {

enum ObjectState { adStateClosed = 0, adStateOpen = 1 };
enum CursorType { adOpenForwardOnly = 0, adOpenKeyset = 1, adOpenDynamic = 2, adOpenStatic = 3 };
enum LockType {
    adLockReadOnly = 1,
    adLockPessimistic = 2,
    adLockOptimistic = 3,
    adLockBatchOptimistic = 4
};
enum CursorLocation { adUseServer = 2, adUseClient = 3 };
enum SearchDirection { adSearchBackward = -1, adSearchForward = 1 };
enum PositionEnum { adPosUnknown = -1, adPosBOF = -2, adPosEOF = -3 };

// Errors ADO raises itself (not the provider); the same typed exception.
namespace adoerrors {
sql::Error noCurrentRecord();
sql::Error notUpdatable();
sql::Error itemNotFound();
sql::Error objectClosed();
sql::Error objectOpen();
sql::Error badArguments();
sql::Error providerNotFound();
sql::Error deletedRow();
}  // namespace adoerrors

}  // namespace db
