// Bytes make a document; what is written is read back to the same document.
#include <fuzz/ScratchFolder.h>
#include <string>
#include <tests/models/Require.h>
#include <tests/models/RoundTrip.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static CScratchFolder sources, target;
    const std::string lost = CRoundTrip(ViewOf(data, size), sources.Path(), target.Path()).Run();
    sources.CheckAndEmpty();
    target.CheckAndEmpty();
    Require(lost.empty(), lost.c_str());
    return 0;
}
