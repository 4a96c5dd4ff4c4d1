#pragma once

// The tree that a filter's text is made into.

#include "bytepattern.h"
#include "filter.h"

#include <memory>
#include <string>
#include <vector>

namespace vlbase::logreading {

/// Bits for the fields, so that a term can ask several.
enum FieldBit : unsigned {
    StationField = 1,
    ModuleField = 2,
    LevelField = 4,
    FirstEventField = 8,
    NumberField = 64,
};
inline constexpr unsigned senderFields = StationField | ModuleField | LevelField;
inline constexpr unsigned eventFields = FirstEventField * 7;

class FilterNode
{
public:
    virtual ~FilterNode() = default;

    virtual bool holds(const LineFields& line) const = 0;
    /// By the sender alone.
    virtual Truth holdsFor(const Sender&) const { return Truth::Maybe; }
    /// By number and time, where those decide; only asked of what `asksColumns`.
    virtual Truth holdsAt(int, std::optional<std::int64_t>) const { return Truth::Maybe; }
    virtual bool asksColumns() const { return false; }
    /// Every line has it for which this holds; null when none is known. \a size is its length.
    virtual const TextFinder* required(std::size_t& size) const
    {
        size = 0;
        return nullptr;
    }
    /// Puts the answers of the leaves together; a leaf takes its own.
    virtual Truth combine(const Truth*& answer) const { return *answer++; }
    virtual void appendLeaves(std::vector<const FilterNode*>& leaves) const
    {
        leaves.push_back(this);
    }
};

using FilterNodes = std::vector<std::shared_ptr<const FilterNode>>;

/// What a field's text must be.
class TextTest
{
public:
    virtual ~TextTest() = default;
    virtual bool holds(std::string_view text) const = 0;
    /// A text in all for which it holds, and whether its case is to be ignored.
    virtual std::string literal(bool& ignoreCase) const = 0;
};

std::shared_ptr<const FilterNode> allOf(FilterNodes nodes);
std::shared_ptr<const FilterNode> anyOf(FilterNodes nodes);
std::shared_ptr<const FilterNode> notOf(std::shared_ptr<const FilterNode> node);
/// Any of the fields passes the test.
std::shared_ptr<const FilterNode> fieldNode(unsigned fields, std::unique_ptr<const TextTest> test);
std::shared_ptr<const FilterNode> numberNode(int from, int to);
/// From \a from on, before \a before.
std::shared_ptr<const FilterNode> timeNode(std::int64_t from, std::int64_t before);

/// The text has this in it, regardless of case.
std::unique_ptr<const TextTest> containsTest(const QString& text);
/// The text is this, regardless of case; `*` and `?` stand for others unless \a isExact.
std::unique_ptr<const TextTest> valueTest(const QString& text, bool isExact);
std::unique_ptr<const TextTest> patternTest(std::shared_ptr<const BytePattern> pattern,
                                            std::string literal, bool ignoreCase);

} // namespace vlbase::logreading
