#include "statistics.h"

#include "linereader.h"
#include "merge.h"

#include <VLBase/logging/gapwatch.h>
#include <VLBase/logging/ownernotice.h>

#include <algorithm>
#include <vector>

namespace vlbase::logreading {

void Statistics::add(const LogView& view, const Filter& filter)
{
    // Counted by the index's numbers first: names are looked up once for each.
    std::vector<std::vector<std::int64_t>> bySender(view.parts().size());
    FilteredRows rows(view, filter);
    LineReader reader(64 * 1024);
    logging::LogLine scratch;
    const auto countSender = [this](const Sender& sender, std::int64_t count) {
        byStation[std::string(sender.station)] += count;
        byModule[std::string(sender.module)] += count;
        byLevel[std::string(sender.level)] += count;
    };
    for (std::int64_t row = rows.next(); row >= 0; row = rows.next()) {
        const LogView::Line found = view.line(row);
        ++lines;
        auto seconds = found.line.seconds;
        if (found.line.isVague) {
            const LineFields line = fieldsOf(reader.text(found.part->file, found.line), scratch);
            seconds = line.seconds;
            countSender({line.station, line.module, line.level}, 1);
        } else {
            auto& counts = bySender[static_cast<std::size_t>(found.part - view.parts().data())];
            if (counts.size() <= found.line.sender)
                counts.resize(found.line.sender + std::size_t{1});
            ++counts[found.line.sender];
        }
        if (seconds) {
            ++byMinute[*seconds / 60];
            first = std::min(first.value_or(*seconds), *seconds);
            last = std::max(last.value_or(*seconds), *seconds);
        }
    }
    for (std::size_t part = 0; part < bySender.size(); ++part) {
        for (std::size_t sender = 0; sender < bySender[part].size(); ++sender) {
            if (bySender[part][sender] > 0)
                countSender(view.parts()[part].file->index().sender(sender),
                            bySender[part][sender]);
        }
    }
    addLosses(view);
}

void Statistics::addLosses(const LogView& view)
{
    logging::GapWatch gaps;
    logging::LogLine line;
    LineReader reader(4 * 1024);
    for (const LogView::Part& part : view.parts()) {
        for (std::size_t number = 0; number < part.index.pieces(); ++number) {
            const IndexView::Piece piece = part.index.piece(number);
            for (std::uint32_t row = 0; row < piece.size; ++row) {
                const IndexedLine indexed = piece.block->line(row);
                if (indexed.number != 0) {
                    lost += static_cast<std::uint64_t>(gaps.missingBefore(indexed.number));
                    continue;
                }
                const bool isLogLine = indexed.sender != IndexBlock::noSender;
                if (!isLogLine || !logging::parseLogLine(reader.text(part.file, indexed), line))
                    continue;
                gaps.lookAt(line);
                const auto notice = logging::parseNotice(line);
                if (notice && notice->kind == logging::OwnerNotice::Kind::LinesLost)
                    lost += notice->count;
            }
        }
    }
}

} // namespace vlbase::logreading
