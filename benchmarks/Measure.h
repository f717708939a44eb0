#pragma once

#include <string>
#include <vector>

/*!
    What the benchmarks share: clocks, medians, and the one form in which they report.
*/
namespace Bench {

//! The median of \a values, which must not be empty.
double median(std::vector<double> values);

//! Slope of a straight line through points, and the standard error of that slope.
struct Slope
{
    double perStep = 0;
    double error = 0;
};

//! The least-squares line through \a values, of which each is one step after the one before.
Slope slope(const std::vector<double> &values);

//! Time that went by: on the wall, on processors in this process, and in children that have ended.
struct Times
{
    double wallMs = 0;
    double ownMs = 0;
    double childrenMs = 0;

    Times operator-(const Times &other) const;
};

//! The three clocks now. Only differences mean something.
Times now();

//! Collects Times and hands out the medians of each of the three.
class Series
{
public:
    void add(const Times &times);
    double wallMs() const { return median(m_wall); }
    double ownMs() const { return median(m_own); }
    double childrenMs() const { return median(m_children); }

private:
    std::vector<double> m_wall;
    std::vector<double> m_own;
    std::vector<double> m_children;
};

//! What a figure is held against, for report().
constexpr double NoFloor = -1;
constexpr double NoAim = -1;

/*!
    Prints one row of the table: seven fields parted by tabs (subject, figure, unit, floor, ratio to
    the floor, aim, verdict). \a aim is an upper limit of the ratio where there is a floor, and of
    the figure itself where there is none.
*/
void report(const std::string &subject, const char *unit, double figure, double floor = NoFloor,
            double aim = NoAim);

//! Prints \a message to standard error and ends the program with status 1.
[[noreturn]] void fail(const std::string &message);

/*!
    The number that follows \a option on the command line, or \a fallback without that option.
    Ends the program where no whole number above 0 follows.
*/
int numberOption(int argc, char **argv, const char *option, int fallback);

} // namespace Bench
