// Units of work on a database. (Interim: no journal or lock yet.)
#include "jet/database.h"

namespace jet {

bool Database::writable() const { return pages_->store().writable(); }

void Database::begin() {
    if (!writable()) throw Error("Cannot update. Database or object is read-only.", errnum::kReadOnly);
    ++txDepth_;
}

void Database::commit() {
    if (txDepth_ == 0) return;
    if (--txDepth_ == 0) pages_->store().sync();
}

void Database::rollback() {
    if (txDepth_ == 0) return;
    txDepth_ = 0;
    reload();
}

std::uint32_t Database::allocatePage(PageType type) {
    if (txDepth_ == 0) throw Error("allocatePage outside a unit of work");
    std::uint32_t n = pages_->pageCount();
    PageBytes bytes(kPageSize, 0);
    bytes[0] = std::uint8_t(type);
    bytes[1] = 0x01;
    pages_->put(n, bytes);
    return n;
}

}  // namespace jet
