#include <bit>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>

#include "authoring/slide.h"
#include "platform/files.h"

namespace tessara::slide {
namespace {

constexpr char kId[] = "AutoCAD Slide\r\n\x1a";  // followed by NUL: 17 bytes in all
constexpr std::size_t kIdSize = 17;
constexpr std::size_t kNewHeader = 31;
constexpr std::size_t kOldHeader = 34;

std::string hex2(unsigned v) {
    static const char* d = "0123456789ABCDEF";
    return std::string{d[(v >> 4) & 15], d[v & 15]};
}

class Reader {
  public:
    Reader(std::span<const std::uint8_t> data, bool big) : d_(data), big_(big) {}

    bool has(std::size_t pos, std::size_t n) const {
        return pos <= d_.size() && n <= d_.size() - pos;
    }
    std::int16_t s16(std::size_t pos) const {
        std::uint16_t v = big_ ? std::uint16_t(d_[pos] << 8 | d_[pos + 1])
                               : std::uint16_t(d_[pos + 1] << 8 | d_[pos]);
        return static_cast<std::int16_t>(v);
    }
    std::int8_t s8(std::size_t pos) const { return static_cast<std::int8_t>(d_[pos]); }
    std::size_t size() const { return d_.size(); }

  private:
    std::span<const std::uint8_t> d_;
    bool big_;
};

double readDouble(std::span<const std::uint8_t> d, std::size_t pos, bool big) {
    std::uint8_t b[8];
    for (int i = 0; i < 8; ++i) b[i] = d[pos + (big ? 7 - i : i)];
    std::uint64_t bits = 0;
    for (int i = 7; i >= 0; --i) bits = bits << 8 | b[i];
    return std::bit_cast<double>(bits);
}

bool plausibleAspect(double a) { return std::isfinite(a) && a > 0.001 && a < 1000.0; }

Point moved(Point p, int dx, int dy, std::size_t at) {
    int x = p.x + dx, y = p.y + dy;
    if (x < -32768 || x > 32767 || y < -32768 || y > 32767)
        throw SlideError("slide coordinate out of range at byte " + std::to_string(at));
    return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)};
}

}  // namespace

void Slide::addVector(std::uint8_t colour, Point from, Point to) {
    Element e{Element::Kind::Vector, colour, static_cast<std::uint32_t>(points.size()), 2};
    points.push_back(from);
    points.push_back(to);
    elements.push_back(e);
}

void Slide::addFill(std::uint8_t colour, const std::vector<Point>& vertices) {
    Element e{Element::Kind::Fill, colour, static_cast<std::uint32_t>(points.size()),
              static_cast<std::uint32_t>(vertices.size())};
    points.insert(points.end(), vertices.begin(), vertices.end());
    elements.push_back(e);
}

Slide readSlide(std::span<const std::uint8_t> data) {
    if (data.size() < kIdSize || std::memcmp(data.data(), kId, kIdSize) != 0)
        throw SlideError("not an AutoCAD slide (identification \"AutoCAD Slide\" missing)");
    if (data.size() < kIdSize + 2) throw SlideError("slide header truncated");

    Slide s;
    s.typeIndicator = data[17];
    s.level = data[18];
    std::size_t pos = 0;
    if (s.level == 2) {
        if (data.size() < kNewHeader) throw SlideError("slide header truncated");
        if (data[29] == 0x34 && data[30] == 0x12) {
            s.bigEndian = false;
        } else if (data[29] == 0x12 && data[30] == 0x34) {
            s.bigEndian = true;
        } else {
            throw SlideError("slide header: test number is not 1234 hex in either byte order");
        }
        Reader r(data, s.bigEndian);
        s.highX = r.s16(19);
        s.highY = r.s16(21);
        // The aspect ratio is always low byte first, whatever the test number says.
        std::uint32_t raw = std::uint32_t(data[23]) | std::uint32_t(data[24]) << 8 |
                            std::uint32_t(data[25]) << 16 | std::uint32_t(data[26]) << 24;
        s.aspectRatio = raw / 10'000'000.0;
        s.hardwareFill = r.s16(27);
        pos = kNewHeader;
    } else if (s.level == 1) {
        // The old header has no test number: it is in the byte order of the
        // machine that wrote it, so take the order in which the floating-point
        // aspect ratio makes sense.
        if (data.size() < kOldHeader) throw SlideError("slide header truncated");
        double le = readDouble(data, 23, false), be = readDouble(data, 23, true);
        if (plausibleAspect(le)) {
            s.bigEndian = false;
            s.aspectRatio = le;
        } else if (plausibleAspect(be)) {
            s.bigEndian = true;
            s.aspectRatio = be;
        } else {
            throw SlideError(
                "old-format slide header: aspect ratio unreadable in either byte order");
        }
        Reader r(data, s.bigEndian);
        s.highX = r.s16(19);
        s.highY = r.s16(21);
        s.hardwareFill = r.s16(31);
        pos = kOldHeader;
    } else {
        throw SlideError("unknown slide level " + std::to_string(s.level));
    }
    if (s.highX <= 0 || s.highY <= 0) throw SlideError("slide header: empty drawing area");
    if (!plausibleAspect(s.aspectRatio)) s.aspectRatio = double(s.highX) / s.highY;

    Reader r(data, s.bigEndian);
    Point last{};
    std::uint8_t colour = 7;
    bool inFill = false;
    std::vector<Point> fill;
    auto closeFill = [&] {
        if (!fill.empty()) {
            s.addFill(colour, fill);
            ++s.records.fills;
        }
        fill.clear();
        inFill = false;
    };

    while (true) {
        if (pos == r.size()) {
            if (inFill) throw SlideError("slide truncated inside a solid fill");
            break;  // no end-of-file record, but nothing was cut either
        }
        if (!r.has(pos, 2)) throw SlideError("slide truncated at byte " + std::to_string(pos));
        std::uint16_t field = static_cast<std::uint16_t>(r.s16(pos));
        unsigned type = field >> 8;
        unsigned low = field & 0xFF;

        // A fill ends with its closing record; the vertex count in the start
        // record is not trusted (AutoCAD writes it with and without the
        // closing record). Should another record interrupt the sequence, the
        // vertices read so far still make the polygon.
        if (inFill && type != 0xFD) closeFill();

        if (type <= 0x7F) {
            if (!r.has(pos, 8))
                throw SlideError("vector record truncated at byte " + std::to_string(pos));
            Point from{static_cast<std::int16_t>(field), r.s16(pos + 2)};
            Point to{r.s16(pos + 4), r.s16(pos + 6)};
            s.addVector(colour, from, to);
            last = from;
            ++s.records.vectors;
            pos += 8;
        } else if (type <= 0xFA) {
            throw SlideError("undefined slide record type " + hex2(type) + " at byte " +
                             std::to_string(pos));
        } else if (type == 0xFB) {
            if (!r.has(pos, 5))
                throw SlideError("offset vector truncated at byte " + std::to_string(pos));
            Point from = moved(last, static_cast<std::int8_t>(low), r.s8(pos + 2), pos);
            Point to = moved(last, r.s8(pos + 3), r.s8(pos + 4), pos);
            s.addVector(colour, from, to);
            last = from;
            ++s.records.offsetVectors;
            pos += 5;
        } else if (type == 0xFC) {
            ++s.records.endOfFile;
            pos += 2;
            break;  // what follows (in a library: the next slide) is not ours
        } else if (type == 0xFD) {
            if (!r.has(pos, 6))
                throw SlideError("solid fill truncated at byte " + std::to_string(pos));
            Point v{r.s16(pos + 2), r.s16(pos + 4)};
            if (v.y < 0) {
                if (inFill)
                    closeFill();
                else
                    inFill = true;
            } else if (inFill) {
                fill.push_back(v);
            } else {
                throw SlideError("solid-fill vertex outside a fill sequence at byte " +
                                 std::to_string(pos));
            }
            pos += 6;
        } else if (type == 0xFE) {
            if (!r.has(pos, 3))
                throw SlideError("common-endpoint vector truncated at byte " + std::to_string(pos));
            Point to = moved(last, static_cast<std::int8_t>(low), r.s8(pos + 2), pos);
            s.addVector(colour, last, to);
            last = to;
            ++s.records.commonEndpoints;
            pos += 3;
        } else {  // 0xFF
            colour = static_cast<std::uint8_t>(low);
            ++s.records.colours;
            pos += 2;
        }
    }
    return s;
}

std::vector<std::uint8_t> readFileBytes(const std::string& nativePath) {
    std::ifstream in(platform::utf8Path(nativePath), std::ios::binary);
    if (!in) throw SlideError("cannot open " + nativePath);
    std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                    std::istreambuf_iterator<char>());
    if (in.bad()) throw SlideError("cannot read " + nativePath);
    return bytes;
}

Slide readSlideFile(const std::string& nativePath) {
    auto bytes = readFileBytes(nativePath);
    try {
        return readSlide(bytes);
    } catch (const SlideError& e) {
        throw SlideError(nativePath + ": " + e.what());
    }
}

bool sameDrawing(const Slide& a, const Slide& b) {
    if (a.highX != b.highX || a.highY != b.highY || a.elements.size() != b.elements.size())
        return false;
    for (std::size_t i = 0; i < a.elements.size(); ++i) {
        const Element& ea = a.elements[i];
        const Element& eb = b.elements[i];
        if (ea.kind != eb.kind || ea.colour != eb.colour || ea.count != eb.count) return false;
        auto pa = a.pointsOf(ea);
        auto pb = b.pointsOf(eb);
        for (std::size_t k = 0; k < pa.size(); ++k)
            if (!(pa[k] == pb[k])) return false;
    }
    return true;
}

}  // namespace tessara::slide
