#include <cmath>
#include <filesystem>
#include <fstream>

#include "authoring/slide.h"
#include "platform/files.h"

namespace tessara::slide {
namespace {

class Out {
  public:
    void byte(unsigned v) { b_.push_back(static_cast<std::uint8_t>(v)); }
    void u16(unsigned v) {
        byte(v & 0xFF);
        byte((v >> 8) & 0xFF);
    }
    void s16(int v) { u16(static_cast<std::uint16_t>(static_cast<std::int16_t>(v))); }
    // A record's leading field: low byte first, the type in the high byte.
    void field(unsigned type, unsigned low) {
        byte(low);
        byte(type);
    }
    std::vector<std::uint8_t> take() { return std::move(b_); }

  private:
    std::vector<std::uint8_t> b_;
};

void checkPoint(Point p) {
    if (p.x < 0 || p.y < 0)
        throw SlideError("slide coordinates must lie in 0..32767 (got " + std::to_string(p.x) +
                         "," + std::to_string(p.y) + ")");
}

bool fitsByte(int d) { return d >= -128 && d <= 127; }

}  // namespace

std::vector<std::uint8_t> writeSlide(const Slide& s) {
    if (s.highX <= 0 || s.highY <= 0 || s.highX > 32767 || s.highY > 32767)
        throw SlideError("slide drawing area must be 1..32767 pixels each way");
    Out o;
    const char id[] = "AutoCAD Slide\r\n\x1a";
    for (std::size_t i = 0; i < 16; ++i) o.byte(static_cast<unsigned char>(id[i]));
    o.byte(0);
    o.byte(86);  // type indicator of the new format
    o.byte(2);   // level
    o.u16(s.highX);
    o.u16(s.highY);
    double aspect = s.aspectRatio > 0 && std::isfinite(s.aspectRatio) ? s.aspectRatio
                                                                      : double(s.highX) / s.highY;
    auto scaled = static_cast<std::uint32_t>(std::llround(aspect * 10'000'000.0));
    o.u16(scaled & 0xFFFF);
    o.u16(scaled >> 16);
    o.u16(s.hardwareFill);
    o.u16(0x1234);

    int colour = -1;
    bool haveLast = false;
    Point last{};
    for (const Element& e : s.elements) {
        auto pts = s.pointsOf(e);
        if (e.colour != colour) {
            o.field(0xFF, e.colour);
            colour = e.colour;
        }
        if (e.kind == Element::Kind::Vector) {
            if (pts.size() != 2) throw SlideError("a vector needs exactly two points");
            Point a = pts[0], b = pts[1];
            checkPoint(a);
            checkPoint(b);
            int ax = a.x - last.x, ay = a.y - last.y, bx = b.x - last.x, by = b.y - last.y;
            if (haveLast && ax == 0 && ay == 0 && fitsByte(bx) && fitsByte(by)) {
                o.field(0xFE, static_cast<std::uint8_t>(bx));
                o.byte(static_cast<std::uint8_t>(by));
                last = b;
            } else if (haveLast && fitsByte(ax) && fitsByte(ay) && fitsByte(bx) && fitsByte(by)) {
                o.field(0xFB, static_cast<std::uint8_t>(ax));
                o.byte(static_cast<std::uint8_t>(ay));
                o.byte(static_cast<std::uint8_t>(bx));
                o.byte(static_cast<std::uint8_t>(by));
                last = a;
            } else {
                o.s16(a.x);  // high byte below 0x80: the record type of a plain vector
                o.s16(a.y);
                o.s16(b.x);
                o.s16(b.y);
                last = a;
            }
            haveLast = true;
        } else {
            if (pts.size() < 3 || pts.size() > 10)
                throw SlideError("a solid fill needs 3 to 10 vertices (got " +
                                 std::to_string(pts.size()) + ")");
            o.field(0xFD, 0);
            o.s16(static_cast<int>(pts.size()));
            o.s16(-1);
            for (Point p : pts) {
                checkPoint(p);
                o.field(0xFD, 0);
                o.s16(p.x);
                o.s16(p.y);
            }
            o.field(0xFD, 0);
            o.s16(0);
            o.s16(-1);
        }
    }
    o.field(0xFC, 0);
    return o.take();
}

void writeFileBytes(const std::string& nativePath, std::span<const std::uint8_t> bytes) {
    namespace fs = std::filesystem;
    fs::path target = platform::utf8Path(nativePath);
    fs::path temp = target;
    temp += ".tmp~";
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out) throw SlideError("cannot write " + nativePath);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out) {
            std::error_code ec;
            fs::remove(temp, ec);
            throw SlideError("cannot write " + nativePath);
        }
    }
    std::error_code ec;
    fs::rename(temp, target, ec);
    if (ec) {
        fs::remove(temp, ec);
        throw SlideError("cannot write " + nativePath + ": " + ec.message());
    }
}

void writeSlideFile(const Slide& slide, const std::string& nativePath) {
    auto bytes = writeSlide(slide);
    writeFileBytes(nativePath, bytes);
}

}  // namespace tessara::slide
