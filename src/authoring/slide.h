#pragma once
// AutoCAD slides (.sld): a screen image as a list of vectors and solid-filled
// polygons in the device coordinates of the screen that took it, (0,0) at the
// lower left. The reader resolves the compressed record forms (offset vectors,
// common-endpoint vectors) into plain vectors, so a slide read back from our
// writer compares equal element by element with the one it was written from.
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace tessara::slide {

// Thrown for anything that is not a readable slide: wrong identification,
// truncated data, an undefined record type, coordinates out of range.
class SlideError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct Point {
    std::int16_t x = 0;
    std::int16_t y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

// One drawn thing in file order: a vector (two points) or a filled polygon.
struct Element {
    enum class Kind : std::uint8_t { Vector, Fill };
    Kind kind = Kind::Vector;
    std::uint8_t colour = 7;  // AutoCAD colour index in force when it was drawn
    std::uint32_t first = 0;  // index of the first point in Slide::points
    std::uint32_t count = 0;  // 2 for a vector, the vertex count for a fill
    friend bool operator==(const Element&, const Element&) = default;
};

// How many records of each type a file held; the resolved geometry does not
// say which encoding a vector had, tests and diagnostics want to know.
struct RecordCounts {
    int vectors = 0;
    int offsetVectors = 0;
    int commonEndpoints = 0;
    int fills = 0;  // polygons, not fill records
    int colours = 0;
    int endOfFile = 0;
    friend bool operator==(const RecordCounts&, const RecordCounts&) = default;
};

struct Slide {
    // Header.
    int level = 2;  // 1 = old format (before Release 9), 2 = new
    std::uint8_t typeIndicator = 86;
    int highX = 0;             // width of the drawing area - 1, in pixels
    int highY = 0;             // height - 1
    double aspectRatio = 1.0;  // horizontal / vertical size of the area in inches
    int hardwareFill = 0;
    bool bigEndian = false;  // 2-byte values high byte first

    std::vector<Point> points;
    std::vector<Element> elements;
    RecordCounts records;  // filled by the reader only

    // Points of one element.
    std::span<const Point> pointsOf(const Element& e) const {
        return {points.data() + e.first, e.count};
    }
    void addVector(std::uint8_t colour, Point from, Point to);
    void addFill(std::uint8_t colour, const std::vector<Point>& vertices);
};

// Reads a slide from its bytes. A slide that ends without its end-of-file
// record is accepted only when the data ends exactly after a complete record
// (some writers omit it); a record cut in the middle is an error.
Slide readSlide(std::span<const std::uint8_t> data);
Slide readSlideFile(const std::string& nativePath);

// Writes a slide in the new format (level 2, low byte first). Vectors are
// encoded in the shortest form the last-point rules allow. Throws SlideError
// for coordinates outside 0..32767 or a fill of fewer than 3 or more than 10
// vertices (AutoCAD's own limits; larger polygons are split by the caller).
std::vector<std::uint8_t> writeSlide(const Slide& slide);
void writeSlideFile(const Slide& slide, const std::string& nativePath);

// Whether the geometry of two slides is the same: header sizes, elements and
// points; record statistics and byte order do not count.
bool sameDrawing(const Slide& a, const Slide& b);

// Reads a whole file into memory; throws SlideError when it cannot be read.
std::vector<std::uint8_t> readFileBytes(const std::string& nativePath);
// Writes bytes to a file through a temporary beside it, so that a failed
// write leaves an existing file as it was. Throws SlideError.
void writeFileBytes(const std::string& nativePath, std::span<const std::uint8_t> bytes);

}  // namespace tessara::slide
