#include <VLBase/logging/internal/logimage.h>
#include <VLBase/logging/internal/logreserve.h>
#include <VLBase/logging/internal/logstaging.h>
#include <VLBase/logging/lineledger.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using vlbase::logging::LineLedger;
using vlbase::logging::LogImage;
using vlbase::logging::LogReserve;
using vlbase::logging::LogStaging;

namespace {

class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size)
        : m_data(data)
        , m_end(data + size)
    {
    }
    bool isAtEnd() const { return m_data == m_end; }
    std::uint8_t byte() { return isAtEnd() ? std::uint8_t(0) : *m_data++; }
    std::int32_t word()
    {
        std::int32_t value = 0;
        copyTo(&value, sizeof value);
        return value;
    }
    void copyTo(void* target, std::size_t size)
    {
        const std::size_t count = std::min(size, static_cast<std::size_t>(m_end - m_data));
        std::memcpy(target, m_data, count);
        m_data += count;
    }
    std::string text(std::size_t size)
    {
        std::string result(size, 'x');
        copyTo(result.data(), size);
        return result.substr(0, result.find('\0'));
    }

private:
    const std::uint8_t* m_data;
    const std::uint8_t* m_end;
};

void require(bool condition)
{
    if (!condition)
        std::abort();
}

// What the log's users do, on a log whose bytes others change between any two steps.
void useLog(LogImage image, Input& input)
{
    const int size = image.bufferSize();
    std::vector<char> ringBytes(2 * static_cast<std::size_t>(size));
    LogStaging::Control control;
    LogStaging ring(&control, ringBytes.data(), ringBytes.size());
    LineLedger ledger;
    while (!input.isAtEnd()) {
        const std::uint8_t step = input.byte();
        const int half = step >> 7;
        switch (step % 12) {
        case 0: {
            const std::string line = input.text(input.byte());
            const bool fits = line.size() < static_cast<std::size_t>(size);
            require(image.append(half, line) == fits);
            require(!fits || (image.fill(half) > static_cast<int>(line.size()) &&
                              std::memcmp(image.half(half) + image.fill(half) - line.size() - 1,
                                          line.c_str(), line.size() + 1) == 0));
            break;
        }
        case 1:
            image.setFill(half, input.word());
            break;
        case 2:
            input.copyTo(image.half(half),
                         static_cast<std::size_t>(std::min(size, int{input.byte()})));
            break;
        case 3: {
            const int most = input.byte();
            image.keepNewest(half, most);
            require(image.fill(half) <= most);
            break;
        }
        case 4:
            image.repair();
            require(image.fill(0) == 0 || image.half(0)[image.fill(0) - 1] == '\0');
            require(image.fill(1) == 0 || image.half(1)[image.fill(1) - 1] == '\0');
            break;
        case 5:
            ring.take(image);
            break;
        case 6: {
            const std::string_view lines = ring.pending();
            for (std::size_t at = 0; at < lines.size();) {
                const std::size_t end = std::min(lines.find('\0', at), lines.size());
                ledger.judge(lines.substr(at, end - at));
                at = end + 1;
            }
            ring.markWritten(step & 64 ? lines.size() : lines.size() / 2);
            require(ring.bytes() <= ring.size());
            break;
        }
        case 7: // the owner died in its move, and its memory may be damaged
            control.taken = control.taken + (half ? 0u : input.byte());
            control.moveEnd =
                half ? control.taken.load() : static_cast<std::uint32_t>(input.word());
            control.moveBytes = input.byte();
            ring.discardIfDamaged();
            ring.finishMove(image);
            break;
        case 8:
            control.written = static_cast<std::uint32_t>(input.word());
            control.skipAt = input.byte();
            ring.discardIfDamaged();
            break;
        case 9:
            image.setIndex(input.word());
            ledger.lostUpTo(image.index());
            break;
        case 10:
            image.takeNumber();
            break;
        default:
            image.setFileName(input.text(600));
        }
        require(image.fill(half) >= 0 && image.fill(half) <= size);
    }
}

} // namespace

// The first two bytes are the size of the mapping, then comes its beginning, then what is done
// with it. On the heap, and of exactly that size, so that the sanitizer sees every step outside.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const std::size_t mapped = input.byte() * std::size_t(16) + input.byte() + 1;
    char* const bytes = static_cast<char*>(std::malloc(mapped));
    std::memset(bytes, 0, mapped);
    constexpr std::size_t interesting = 52; // the header's words
    input.copyTo(bytes, std::min(mapped, interesting));
    LogReserve::isReserve(bytes, mapped);
    if (!LogImage::defect(bytes, mapped))
        useLog(LogImage::view(bytes, mapped), input);
    std::free(bytes);
    return 0;
}
