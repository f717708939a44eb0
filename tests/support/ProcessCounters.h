#pragma once

#include <QtGlobal>

// What this process holds, for tests that look for what is left behind.

//! The number of open file descriptors.
int openDescriptors();

//! The number of threads.
int threads();

//! The bytes that the C library's heap has handed out. A sanitizer's own heap is not seen.
qint64 heapBytesInUse();
