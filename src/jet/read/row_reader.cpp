#include "jet/read/row_reader.h"

#include <cstring>
#include <optional>

#include "jet/format/error.h"
#include "jet/format/text.h"
#include "jet/read/long_value.h"

namespace jet {

bool RowDecoder::hasVarTable(std::uint16_t rowColumns) const {
    if (def_.varColumnCount == 0) return false;
    if (rowColumns >= def_.columns.size()) return true;
    // A row stored before columns were added holds only the columns of its
    // time, and a variable column table only when one of those was
    // variable: the first text column added to a table of fixed columns
    // leaves its older rows without one.
    for (const auto& c : def_.columns)
        if (!c.isFixed() && c.number < rowColumns) return true;
    return false;
}

RowDecoder::Layout RowDecoder::layout(const RowBytes& row) const {
    Layout l;
    const std::uint8_t* d = row.data();
    l.size = row.size();
    auto bad = [&](const char* what) {
        throwCorrupt(row.pageNumber,
                     "row " + std::to_string(row.row) + " of " + def_.name + ": " + what);
    };
    if (l.size < 3) bad("shorter than its header");
    l.numCols = u16(d);
    std::size_t maskLen = (std::size_t(l.numCols) + 7) / 8;
    if (maskLen + 2 > l.size) bad("null mask does not fit");
    l.nullMask = l.size - maskLen;
    l.dataEnd = l.nullMask;
    if (hasVarTable(l.numCols)) {
        if (l.nullMask < 4) bad("variable column table does not fit");
        l.varLen = u16(d + l.nullMask - 2);
        std::size_t tableBytes = 2 * std::size_t(l.varLen) + 4;
        if (tableBytes + 2 > l.nullMask) bad("variable column table does not fit");
        l.eod = u16(d + l.nullMask - 4 - 2 * std::size_t(l.varLen));
        std::size_t tableStart = l.nullMask - tableBytes;
        if (l.eod > tableStart || l.eod < 2) bad("end of data lies outside the row");
        l.dataEnd = l.eod;
    }
    return l;
}

namespace {
template <class T>
T load(const std::uint8_t* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
}  // namespace

Value RowDecoder::column(const RowBytes& row, const Layout& l, const Column& c) const {
    const std::uint8_t* d = row.data();
    if (c.number >= l.numCols) return Value{};
    bool present = (d[l.nullMask + c.number / 8] >> (c.number % 8)) & 1;
    if (c.type == ColumnType::Boolean) return Value{present};
    if (!present) return Value{};
    const std::uint8_t* p = nullptr;
    std::size_t n = 0;
    if (c.isFixed()) {
        n = c.length ? c.length : fixedSizeOf(c.type);
        std::size_t start = 2 + std::size_t(c.fixedOffset);
        if (start + n > l.dataEnd)
            throwCorrupt(row.pageNumber, "row " + std::to_string(row.row) + " of " + def_.name +
                                             ": column " + c.name + " outside the row");
        p = d + start;
    } else {
        if (c.varIndex >= l.varLen) return Value{};
        std::size_t base = l.nullMask - 4;
        std::size_t start = u16(d + base - 2 * std::size_t(c.varIndex));
        std::size_t end = std::size_t(c.varIndex) + 1 < l.varLen
                              ? u16(d + base - 2 * (std::size_t(c.varIndex) + 1))
                              : l.eod;
        if (start > end || end > l.eod || start < 2)
            throwCorrupt(row.pageNumber, "row " + std::to_string(row.row) + " of " + def_.name +
                                             ": column " + c.name + " has impossible bounds");
        p = d + start;
        n = end - start;
    }
    auto need = [&](std::size_t k) {
        if (n < k)
            throwCorrupt(row.pageNumber, "row " + std::to_string(row.row) + " of " + def_.name +
                                             ": column " + c.name + " is too short");
    };
    switch (c.type) {
        case ColumnType::Boolean:
            return Value{present};
        case ColumnType::Byte:
            need(1);
            return Value{std::uint8_t(p[0])};
        case ColumnType::Integer:
            need(2);
            return Value{std::int16_t(u16(p))};
        case ColumnType::Long:
            need(4);
            return Value{std::int32_t(u32(p))};
        case ColumnType::Currency:
            need(8);
            return Value{Currency{load<std::int64_t>(p)}};
        case ColumnType::Single:
            need(4);
            return Value{load<float>(p)};
        case ColumnType::Double:
            need(8);
            return Value{load<double>(p)};
        case ColumnType::DateTime:
            need(8);
            return Value{DateTime{load<double>(p)}};
        case ColumnType::Guid: {
            need(16);
            Guid g;
            std::memcpy(g.bytes.data(), p, 16);
            return Value{g};
        }
        case ColumnType::Numeric: {
            need(17);
            Decimal dec;
            dec.negative = p[0] != 0;
            dec.scale = c.scale;
            // Four 32-bit groups, most significant first, each little-endian.
            for (int k = 0; k < 4; ++k) dec.magnitude = (dec.magnitude << 32) | u32(p + 1 + 4 * k);
            return Value{dec};
        }
        case ColumnType::Text:
            return Value{decodeText(p, n)};
        case ColumnType::Binary:
            return Value{Binary(p, p + n)};
        case ColumnType::Memo: {
            if (n == 0) return Value{std::string()};
            Binary b = readLongValue(pages_, p, n);
            return Value{decodeText(b.data(), b.size())};
        }
        case ColumnType::OLE: {
            if (n == 0) return Value{Binary()};
            return Value{readLongValue(pages_, p, n)};
        }
    }
    return Value{Binary(p, p + n)};
}

Row RowDecoder::decode(const RowBytes& row) const {
    Layout l = layout(row);
    Row out;
    out.reserve(def_.columns.size());
    for (const Column& c : def_.columns) out.push_back(column(row, l, c));
    return out;
}

Value RowDecoder::decodeColumn(const RowBytes& row, std::size_t pos) const {
    Layout l = layout(row);
    return column(row, l, def_.columns.at(pos));
}

std::vector<std::uint32_t> RowReader::dataPages() const {
    UsageMap m = readUsageMap(pages_, def_.usedPages);
    std::vector<std::uint32_t> out;
    for (std::uint32_t p : m.pages) {
        if (p == 0) continue;
        PageRef pg = pages_.page(p);
        if ((*pg)[0] == std::uint8_t(PageType::Data) &&
            u32(pg->data() + datapage::kTdefPage) == def_.page)
            out.push_back(p);
    }
    return out;
}

// Resolves the row at (page,row): false for deleted rows; follows overflow
// pointers (a bounded number of hops).
bool RowReader::liveRow(std::uint32_t page, std::uint16_t row, RowBytes& out) const {
    return liveRow(pages_.page(page), page, row, out);
}

bool RowReader::liveRow(const PageRef& pg, std::uint32_t page, std::uint16_t row,
                        RowBytes& out) const {
    RowBytes r = rowBytes(pg, page, row);
    for (int hop = 0;; ++hop) {
        if (r.flags & datapage::kDeletedFlag) return false;
        if (!(r.flags & datapage::kOverflowFlag)) break;
        if (hop >= 8) throwCorrupt(page, "overflow row pointers form a chain too long");
        if (r.size() < 4) throwCorrupt(page, "overflow row pointer truncated");
        RowId next = RowId::fromPointer(u32(r.data()));
        if (next.page == 0) throwCorrupt(page, "overflow row points at the header page");
        PageRef np = pages_.page(next.page, PageType::Data);
        RowBytes target = rowBytes(np, next.page, next.row);
        // The moved row is flagged deleted at its new place so that a scan
        // does not see it twice; reached through the pointer it is live.
        if (target.flags & datapage::kOverflowFlag) {
            r = target;
            continue;
        }
        target.flags = 0;
        if (target.start == 0 && target.end == 0)
            throwCorrupt(next.page, "overflow row target is empty");
        r = target;
        break;
    }
    out = r;
    return true;
}

PageStream RowReader::tablePages() const {
    UsageMap m = readUsageMap(pages_, def_.usedPages);
    std::vector<std::uint32_t> pages;
    pages.reserve(m.pages.size());
    for (std::uint32_t p : m.pages)
        if (p != 0) pages.push_back(p);
    return PageStream(pages_, std::move(pages));
}

void RowReader::scan(const std::function<bool(RowId, const Row&)>& visit) const {
    ReadSection reading(pages_.store());
    RowDecoder dec(pages_, def_);
    // One pass over the usage map's pages: each page is read once, checked
    // and decoded while it is in hand.
    PageStream stream = tablePages();
    std::uint32_t p = 0;
    while (PageRef pg = stream.next(p)) {
        if ((*pg)[0] != std::uint8_t(PageType::Data) ||
            u32(pg->data() + datapage::kTdefPage) != def_.page)
            continue;
        std::uint16_t count = rowCountOf(*pg);
        for (std::uint16_t i = 0; i < count; ++i) {
            RowBytes r;
            if (!liveRow(pg, p, i, r)) continue;
            if (!visit(RowId{p, i}, dec.decode(r))) return;
        }
    }
}

void RowReader::scanLazy(const std::function<bool(const RowView&)>& visit) const {
    ReadSection reading(pages_.store());
    RowDecoder dec(pages_, def_);
    PageStream stream = tablePages();
    std::uint32_t p = 0;
    while (PageRef pg = stream.next(p)) {
        if ((*pg)[0] != std::uint8_t(PageType::Data) ||
            u32(pg->data() + datapage::kTdefPage) != def_.page)
            continue;
        std::uint16_t count = rowCountOf(*pg);
        for (std::uint16_t i = 0; i < count; ++i) {
            RowBytes r;
            if (!liveRow(pg, p, i, r)) continue;
            if (!visit(RowView(dec, def_, std::move(r), RowId{p, i}))) return;
        }
    }
}

std::vector<RowId> RowReader::rowIds() const {
    ReadSection reading(pages_.store());
    std::vector<RowId> out;
    for (std::uint32_t p : dataPages()) {
        PageRef pg = pages_.page(p);
        std::uint16_t count = rowCountOf(*pg);
        for (std::uint16_t i = 0; i < count; ++i) {
            RowBytes r;
            if (liveRow(p, i, r)) out.push_back(RowId{p, i});
        }
    }
    return out;
}

std::optional<Row> RowReader::read(RowId id) const {
    PageRef pg = pages_.page(id.page);
    if ((*pg)[0] != std::uint8_t(PageType::Data) ||
        u32(pg->data() + datapage::kTdefPage) != def_.page)
        return std::nullopt;
    if (id.row >= rowCountOf(*pg)) return std::nullopt;
    RowBytes r;
    if (!liveRow(id.page, id.row, r)) return std::nullopt;
    return RowDecoder(pages_, def_).decode(r);
}

void RowReader::readLazy(const std::vector<RowId>& ids,
                         const std::function<bool(const RowView&)>& visit) const {
    ReadSection reading(pages_.store());
    RowDecoder dec(pages_, def_);
    // Rows in page order (an index's hits, sorted) are read as a scan reads:
    // runs of pages in one call, into buffers used again, not a cache entry
    // and an allocation for each of a Folder's thousands of pages.
    std::vector<std::uint32_t> order;
    for (const RowId& id : ids) {
        if (!order.empty() && id.page < order.back()) {
            order.clear();
            break;
        }
        if (order.empty() || id.page != order.back()) order.push_back(id.page);
    }
    std::optional<PageStream> stream;
    if (!order.empty()) stream.emplace(pages_, std::move(order));
    PageRef pg;
    std::uint32_t at = 0;
    for (const RowId& id : ids) {
        if (!pg || at != id.page) {
            at = id.page;
            pg = stream ? stream->next(at) : pages_.page(id.page);
        }
        if ((*pg)[0] != std::uint8_t(PageType::Data) ||
            u32(pg->data() + datapage::kTdefPage) != def_.page || id.row >= rowCountOf(*pg))
            continue;
        RowBytes r;
        if (!liveRow(pg, id.page, id.row, r)) continue;
        if (!visit(RowView(dec, def_, std::move(r), id))) return;
    }
}

}  // namespace jet
