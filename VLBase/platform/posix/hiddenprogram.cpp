#include "detachedprogram.h"

#include <VLBase/platform/hiddenprogram.h>

#include <vector>

namespace vlbase::platform {

namespace {

/// Words between blanks; double quotes hold a word together and are not part of it.
std::vector<std::string> splitAtBlanks(const std::string& text)
{
    std::vector<std::string> words;
    bool isInWord = false;
    bool isQuoted = false;
    for (const char character : text) {
        const bool isBlank = !isQuoted && (character == ' ' || character == '\t');
        if (!isBlank && !isInWord)
            words.emplace_back();
        isInWord = !isBlank;
        if (character == '"')
            isQuoted = !isQuoted;
        else if (!isBlank)
            words.back() += character;
    }
    return words;
}

std::string withoutQuotes(const std::string& text)
{
    const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

} // namespace

std::optional<int> startHiddenProgram(const std::string& program, const std::string& arguments)
{
    std::vector<std::string> words = splitAtBlanks(arguments);
    words.insert(words.begin(), withoutQuotes(program));
    return startDetachedProgram(std::move(words));
}

} // namespace vlbase::platform
