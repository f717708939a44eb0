#include "benchmarks/Measure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <sys/resource.h>

namespace Bench {

namespace {

constexpr double MsPerSecond = 1e3;
constexpr double NsPerMs = 1e6;
constexpr double UsPerMs = 1e3;

double clockMs(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * MsPerSecond
           + static_cast<double>(time.tv_nsec) / NsPerMs;
}

double toMs(const timeval &time)
{
    return static_cast<double>(time.tv_sec) * MsPerSecond
           + static_cast<double>(time.tv_usec) / UsPerMs;
}

std::string inField(double value)
{
    std::array<char, 32> text = {};
    snprintf(text.data(), text.size(), std::abs(value) < 100 ? "%.3f" : "%.0f", value);
    return text.data();
}

} // namespace

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1)
        return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

Slope slope(const std::vector<double> &values)
{
    const auto n = static_cast<double>(values.size());
    const double meanX = (n - 1) / 2;
    double meanY = 0;
    for (const double value : values)
        meanY += value / n;

    double xx = 0;
    double xy = 0;
    for (size_t i = 0; i < values.size(); ++i) {
        const double dx = static_cast<double>(i) - meanX;
        xx += dx * dx;
        xy += dx * (values[i] - meanY);
    }
    Slope result;
    result.perStep = xy / xx;

    double residuals = 0;
    for (size_t i = 0; i < values.size(); ++i) {
        const double expected = meanY + result.perStep * (static_cast<double>(i) - meanX);
        residuals += (values[i] - expected) * (values[i] - expected);
    }
    result.error = std::sqrt(residuals / (n - 2) / xx);
    return result;
}

Times Times::operator-(const Times &other) const
{
    return {wallMs - other.wallMs, ownMs - other.ownMs, childrenMs - other.childrenMs};
}

Times now()
{
    // The sum of user and system time of getrusage(RUSAGE_SELF), without its rounding.
    const double own = clockMs(CLOCK_PROCESS_CPUTIME_ID);
    rusage children = {};
    getrusage(RUSAGE_CHILDREN, &children);
    return {clockMs(CLOCK_MONOTONIC), own, toMs(children.ru_utime) + toMs(children.ru_stime)};
}

void Series::add(const Times &times)
{
    m_wall.push_back(times.wallMs);
    m_own.push_back(times.ownMs);
    m_children.push_back(times.childrenMs);
}

void report(const std::string &subject, const char *unit, double figure, double floor, double aim)
{
    const double judged = floor == NoFloor ? figure : figure / floor;
    printf("%s\t%s\t%s\t%s\t%s\t%s\t%s\n", subject.c_str(), inField(figure).c_str(), unit,
           floor == NoFloor ? "" : inField(floor).c_str(),
           floor == NoFloor ? "" : inField(judged).c_str(),
           aim == NoAim ? "" : inField(aim).c_str(),
           aim == NoAim    ? ""
           : judged <= aim ? "met"
                           : "missed");
    fflush(stdout);
}

void fail(const std::string &message)
{
    fprintf(stderr, "%s\n", message.c_str());
    exit(EXIT_FAILURE);
}

int numberOption(int argc, char **argv, const char *option, int fallback)
{
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], option) != 0)
            continue;
        const int number = i + 1 < argc ? atoi(argv[i + 1]) : 0;
        if (number <= 0)
            fail(std::string(option) + " needs a number");
        return number;
    }
    return fallback;
}

} // namespace Bench
