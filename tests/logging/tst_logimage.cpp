#include <VLBase/logging/internal/logimage.h>
#include <VLBase/logging/internal/logstaging.h>

#include <QTest>

#include <cstring>
#include <random>
#include <string>
#include <vector>

using vlbase::logging::LogImage;
using vlbase::logging::LogStaging;

namespace {

// A log in ordinary memory, with bytes behind it that nobody may touch.
class TestImage
{
public:
    explicit TestImage(int bufferSize)
        : m_bytes(LogImage::sizeFor(bufferSize) + guardSize, '\0')
    {
        std::fill(m_bytes.end() - guardSize, m_bytes.end(), guardByte);
        image = LogImage::format(m_bytes.data(), bufferSize);
    }
    bool isGuardIntact() const
    {
        return std::count(m_bytes.end() - guardSize, m_bytes.end(), guardByte) == guardSize;
    }
    std::string content(int half) const
    {
        return std::string(image.half(half), static_cast<std::size_t>(image.fill(half)));
    }

    LogImage image;

private:
    static constexpr int guardSize = 64;
    static constexpr char guardByte = '\x5A';

    alignas(8) std::vector<char> m_bytes;
};

// One half, word for word as the programs of the family agree on it: line by line, byte by byte.
struct PlainHalf
{
    std::vector<char> bytes;
    int fill = 0;

    int size() const { return static_cast<int>(bytes.size()); }
    char at(int place) const { return bytes[static_cast<std::size_t>(place)]; }

    void removeFirstLine()
    {
        int p = 1;
        while (p < size() && at(p) != '\0')
            ++p;
        if (p < size() && fill - p + 1 > 0) {
            const int count = std::min(fill - p + 1, size() - (p + 1));
            std::memmove(bytes.data(), bytes.data() + p + 1, static_cast<std::size_t>(count));
            fill = std::max(fill - (p + 1), 0);
        } else {
            fill = 0;
        }
    }
    void add(const std::string& line)
    {
        const int length = static_cast<int>(line.size());
        if (length + 1 > size())
            return;
        while (fill + length + 1 > size())
            removeFirstLine();
        std::memcpy(bytes.data() + fill, line.c_str(), line.size() + 1);
        fill += length + 1;
    }
    std::string content() const
    {
        return std::string(bytes.data(), static_cast<std::size_t>(fill));
    }
};

} // namespace

class tst_LogImage : public QObject
{
    Q_OBJECT

private slots:
    void appendLikeTheContract();
    void numbers();
    void keepNewest();
    void repair();
    void stagingWithoutRoom();
};

void tst_LogImage::appendLikeTheContract()
{
    std::mt19937 random(20240517);
    const auto upTo = [&random](int most) { return static_cast<int>(random() % (most + 1u)); };
    for (int round = 0; round < 6000; ++round) {
        const bool damaged = round % 2 == 0; // any content, or whole lines
        const int size = 1 + upTo(60);
        TestImage own(size);
        PlainHalf plain[2];
        for (const int half : {0, 1}) {
            plain[half].bytes.assign(static_cast<std::size_t>(size), '\0');
            if (damaged) {
                for (char& byte : plain[half].bytes)
                    byte = static_cast<char>(upTo(3));
                plain[half].fill = upTo(size);
            }
            std::copy(plain[half].bytes.begin(), plain[half].bytes.end(), own.image.half(half));
            own.image.setFill(half, plain[half].fill);
        }
        for (int step = 0; step < 25; ++step) {
            const std::string line(static_cast<std::size_t>(upTo(upTo(size + 2))),
                                   static_cast<char>('a' + step));
            const int half = upTo(1); // they fill up separately
            const bool fits = static_cast<int>(line.size()) < size;
            QCOMPARE(own.image.append(half, line), fits);
            plain[half].add(line);
            QCOMPARE(own.content(half), plain[half].content());
        }
        QVERIFY(own.isGuardIntact());
    }
}

void tst_LogImage::numbers()
{
    TestImage own(10);
    std::vector<int> taken;
    own.image.setIndex(999997);
    for (int i = 0; i < 6; ++i)
        taken.push_back(own.image.takeNumber().number);
    QCOMPARE(taken, (std::vector<int>{999997, 999998, 100000, 100000, 100001, 100002}));
    own.image.setIndex(0x7FFFFFFF);
    QCOMPARE(own.image.takeNumber().number, 100000);
}

void tst_LogImage::keepNewest()
{
    for (int bytes = 14; bytes >= 0; --bytes) {
        TestImage own(100);
        std::string left("1\0"
                         "22\0"
                         "333\0"
                         "4444\0",
                         14);
        for (const char* line : {"1", "22", "333", "4444"})
            own.image.append(0, line);
        own.image.keepNewest(0, bytes);
        while (static_cast<int>(left.size()) > bytes)
            left.erase(0, left.find('\0') + 1);
        QCOMPARE(own.content(0), left);
    }
}

void tst_LogImage::repair()
{
    TestImage half(100);
    half.image.append(0, "whole");
    half.image.append(1, "whole");
    std::memcpy(half.image.half(1) + 6, "half a li", 9);
    half.image.setFill(1, 15);
    half.image.repair();
    QVERIFY(half.content(0) == half.content(1));
    QCOMPARE(half.content(1), std::string("whole\0", 6));
    std::memset(half.image.half(0), 'x', 100);
    half.image.setFill(0, 100);
    half.image.repair();
    QCOMPARE(half.image.fill(0), 0);

    for (const int wild : {-1, 101, int(0x80000000), 0x7FFFFFFF}) {
        TestImage own(100);
        own.image.setFill(0, wild);
        own.image.keepNewest(0, 50);
        own.image.dropFront(0, 50);
        QVERIFY(own.image.append(0, "line"));
        QCOMPARE(own.content(0), std::string("line\0", 5));
        own.image.setFill(1, wild);
        own.image.repair();
        QVERIFY(own.image.fill(1) == 0 && own.isGuardIntact());
    }
}

void tst_LogImage::stagingWithoutRoom()
{
    TestImage own(100);
    own.image.append(1, "line");
    LogStaging::Control control;
    control.taken = control.moveEnd = 5;
    LogStaging staging(&control, nullptr, 0);
    QVERIFY(!staging.take(own.image) && staging.pending().empty());
    staging.finishMove(own.image);
    staging.markWritten(5);
    QCOMPARE(staging.bytes(), std::size_t(5));
    staging.discardIfDamaged();
    QCOMPARE(staging.bytes(), std::size_t(0));
    QCOMPARE(own.content(1), std::string("line\0", 5));
}

QTEST_GUILESS_MAIN(tst_LogImage)
#include "tst_logimage.moc"
