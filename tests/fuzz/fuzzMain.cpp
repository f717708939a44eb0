// The entry that libFuzzer calls once before the first input.

#include "tests/fuzz/fuzzSettings.h"

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/);

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    fuzzSettingsInitialize();
    return 0;
}
