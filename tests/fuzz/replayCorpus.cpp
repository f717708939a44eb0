// Runs the fuzzer's harness once for each file that the command line names.

#include "tests/support/files.h"

#include <QtGlobal>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char *argv[])
{
    LLVMFuzzerInitialize(&argc, &argv);
    for (int i = 1; i < argc; ++i) {
        const QByteArray content = readFile(QString::fromLocal8Bit(argv[i]));
        if (content.isNull())
            qFatal("can't read %s", argv[i]);
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(content.constData()),
                               static_cast<size_t>(content.size()));
    }
    return argc > 1 ? EXIT_SUCCESS : EXIT_FAILURE;
}
