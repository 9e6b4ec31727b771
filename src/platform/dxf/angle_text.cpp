#include "platform/dxf/angle_text.hpp"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <numbers>

#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxf {

namespace {

// A double needs 17 significant digits at most: a text with more was made to carry an angle
// the plain conversion loses.
constexpr int kDoubleDigits = 17;

int SignificantDigits(std::string_view text) {
    int digits = 0;
    bool leading = true;
    for (char c : text) {
        if (c == 'e' || c == 'E') break;
        if (!std::isdigit(static_cast<unsigned char>(c))) continue;
        if (leading && c == '0') continue;
        leading = false;
        ++digits;
    }
    return digits;
}

// The precise form: degrees with the digits of a long double, whose conversion back to radians
// errs far less than half a unit of a double's last place.
double PreciseRadians(std::string_view degrees) {
    char buffer[64];
    if (degrees.size() >= sizeof buffer) return 0;
    degrees.copy(buffer, degrees.size());
    buffer[degrees.size()] = '\0';
    const long double value = std::strtold(buffer, nullptr);
    return static_cast<double>(value * (std::numbers::pi_v<long double> / 180.0L));
}

}  // namespace

double Radians(std::string_view degrees) {
    if (SignificantDigits(degrees) > kDoubleDigits) return PreciseRadians(degrees);
    double value = 0;
    ParseDouble(degrees, value);
    return value / kDegrees;
}

void FormatAngle(double radians, std::string& out) {
    const std::size_t start = out.size();
    FormatDouble(radians * kDegrees, out);
    if (Radians(std::string_view(out).substr(start)) == radians) return;
    out.resize(start);
    char buffer[48];
    const long double degrees = radians * (180.0L / std::numbers::pi_v<long double>);
    const int n = std::snprintf(buffer, sizeof buffer, "%.20Le", degrees);
    out.append(buffer, static_cast<std::size_t>(n));
}

}  // namespace dxf
