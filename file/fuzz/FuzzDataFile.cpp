// libFuzzer target: arbitrary bytes as the content of a data file.
//
// The decoder must never read outside its input, build huge buffers or crash
// (the sanitizers watch for that), and any file it accepts must survive what
// the program does with it: the image is saved again, and the saved file must
// decode to the same image. A mismatch aborts, which libFuzzer reports as a
// finding together with the input.
//
//   wrpd6t-fuzz-datafile -max_total_time=60 NEW_INPUTS_DIR file/fuzz/corpus
//
// The seeds in corpus/ were made once, the good ones with the packer and the
// broken ones by hand, and are named after what they exercise: files of
// several passes with run and seven-flag control bytes (fresh-radio,
// noisy-channels, sparse-channels), zero passes, a pass with no eliminated
// byte, and files cut short, claiming more passes or more output than they
// hold, or with control bytes that run past the data.

#include "core/MemoryImage.h"
#include "file/DataFile.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void finding(const char *what)
{
    std::fprintf(stderr, "data file round trip: %s\n", what);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    namespace DF = wr::DataFile;
    const DF::ReadResult read = DF::Decode(QByteArrayView(data, static_cast<qsizetype>(size)));
    if (read.status != DF::ReadStatus::Ok)
        return 0;
    if (read.image.size() != wr::MemoryImage::Size || read.container.size() != DF::ContainerSize)
        finding("accepted file of the wrong size");

    wr::MemoryImage image;
    image.setBytes(read.image);
    const std::optional<QByteArray> saved = DF::Encode(image);
    if (!saved)
        finding("accepted image cannot be saved");
    const DF::ReadResult reread = DF::Decode(*saved);
    if (reread.status != DF::ReadStatus::Ok)
        finding("saved file is not accepted");
    if (reread.image != read.image)
        finding("saved file holds another image");
    return 0;
}
