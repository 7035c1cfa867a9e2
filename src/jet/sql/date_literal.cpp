// Jet reads the text between the #s independently of the locale: year first
// with - or /, otherwise month/day/year as in the US; when the first number
// cannot be a month but the second can, it takes day/month/year instead, as
// Jet does. A time (h:mm[:ss] [AM|PM]) may follow the date or stand alone.
#include "jet/sql/date_literal.h"

#include <cctype>
#include <cstdint>
#include <vector>

#include "jet/format/value.h"

namespace sql {

namespace {

bool leap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

bool validDate(int y, int m, int d) {
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1) return false;
    return d <= days[m - 1] + (m == 2 && leap(y) ? 1 : 0);
}

struct Cursor {
    std::string_view s;
    std::size_t i = 0;
    void spaces() {
        while (i < s.size() && s[i] == ' ') ++i;
    }
    bool end() const { return i >= s.size(); }
    // Up to maxDigits digits; -1 when there are none.
    int number(std::size_t& digits, std::size_t maxDigits = 4) {
        int n = 0;
        digits = 0;
        while (i < s.size() && digits < maxDigits &&
               std::isdigit(static_cast<unsigned char>(s[i]))) {
            n = n * 10 + (s[i++] - '0');
            ++digits;
        }
        return digits ? n : -1;
    }
    bool accept(char c) {
        if (i < s.size() && s[i] == c) {
            ++i;
            return true;
        }
        return false;
    }
    bool acceptWord(std::string_view w) {
        if (s.size() - i < w.size()) return false;
        for (std::size_t k = 0; k < w.size(); ++k)
            if (std::toupper(static_cast<unsigned char>(s[i + k])) != w[k]) return false;
        i += w.size();
        return true;
    }
};

// Two-digit years as Jet (and OLE Automation) window them.
int fullYear(int y, std::size_t digits) {
    if (digits > 2) return y;
    return y < 30 ? 2000 + y : 1900 + y;
}

std::optional<double> parseTime(Cursor& c, int firstHour) {
    std::size_t digits = 0;
    int h = firstHour;
    if (h < 0) h = c.number(digits, 2);
    if (h < 0 || !c.accept(':')) return std::nullopt;
    int mi = c.number(digits, 2), se = 0;
    if (mi < 0) return std::nullopt;
    if (c.accept(':')) {
        se = c.number(digits, 2);
        if (se < 0) return std::nullopt;
    }
    c.spaces();
    if (c.acceptWord("AM")) {
        if (h < 1 || h > 12) return std::nullopt;
        if (h == 12) h = 0;
    } else if (c.acceptWord("PM")) {
        if (h < 1 || h > 12) return std::nullopt;
        if (h != 12) h += 12;
    }
    if (h > 23 || mi > 59 || se > 59) return std::nullopt;
    return (h * 3600 + mi * 60 + se) / 86400.0;
}

}  // namespace

std::optional<double> parseDateLiteral(std::string_view text) {
    Cursor c{text};
    c.spaces();
    std::size_t d1 = 0, d2 = 0, d3 = 0;
    int a = c.number(d1);
    if (a < 0) return std::nullopt;
    if (c.accept(':')) {
        // A time alone: on Jet's day zero.
        c.i -= 1;
        auto t = parseTime(c, a);
        c.spaces();
        if (!t || !c.end()) return std::nullopt;
        return *t;
    }
    char sep = 0;
    if (c.accept('-'))
        sep = '-';
    else if (c.accept('/'))
        sep = '/';
    else
        return std::nullopt;
    int b = c.number(d2, 2);
    if (b < 0 || !c.accept(sep)) return std::nullopt;
    int y = 0, m = 0, d = 0;
    int e = c.number(d3);
    if (e < 0) return std::nullopt;
    if (d1 == 4) {
        y = a;
        m = b;
        d = e;
        if (d3 > 2) return std::nullopt;
    } else {
        if (d1 > 2) return std::nullopt;
        y = fullYear(e, d3);
        m = a;
        d = b;
        if (m > 12 && d <= 12) std::swap(m, d);
    }
    if (!validDate(y, m, d)) return std::nullopt;
    const double days =
        static_cast<double>(jet::daysFromCivil(y, m, d) - jet::daysFromCivil(1899, 12, 30));
    double fraction = 0;
    c.spaces();
    if (!c.end()) {
        auto t = parseTime(c, -1);
        if (!t) return std::nullopt;
        fraction = *t;
    }
    c.spaces();
    if (!c.end()) return std::nullopt;
    // OLE dates before day zero carry the time as a positive fraction below
    // the negative day number.
    return days >= 0 ? days + fraction : days - fraction;
}

}  // namespace sql
