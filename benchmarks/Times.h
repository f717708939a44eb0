#pragma once

#include <ctime>

//! Milliseconds that went by: on the wall, and on processors in this process without its children.
struct Times
{
    double wall = 0;
    double own = 0;

    Times operator-(const Times &other) const { return {wall - other.wall, own - other.own}; }
};

//! Both clocks now. Only differences mean something.
inline Times now()
{
    const auto read = [](clockid_t clock) {
        timespec time = {};
        clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    };
    return {read(CLOCK_MONOTONIC), read(CLOCK_PROCESS_CPUTIME_ID)};
}
