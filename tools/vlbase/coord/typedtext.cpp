#include "typedtext.h"

#include <algorithm>
#include <cstddef>

namespace vlbase::tool::coord {
namespace {

struct Sign
{
    std::string_view bytes;
    char tidied;
};

constexpr Sign signs[] = {
    {"\xC2\xB0", degreeMark}, // degree sign
    {"\xC2\xBA", degreeMark}, // masculine ordinal, its double on keyboards
    {"\xCB\x9A", degreeMark}, // ring above
    {"\xC2\xB4", '\''},       // acute accent
    {"\xE2\x80\xB2", '\''},   // prime
    {"\xE2\x80\x99", '\''},   // right quotation mark
    {"\xE2\x80\x98", '\''},   // left quotation mark
    {"\xE2\x80\xB3", '"'},    // double prime
    {"\xE2\x80\x9D", '"'},    // right double quotation mark
    {"\xE2\x80\x9C", '"'},    // left double quotation mark
    {"\xE2\x88\x92", '-'},    // minus
    {"\xE2\x80\x93", '-'},    // en dash
    {"\xC2\xA0", ' '},        // no-break space
    {"\xE2\x80\xAF", ' '},    // narrow no-break space
    {"\xE2\x80\x89", ' '},    // thin space
};

/// The sign that the text begins with; null when it begins with none.
const Sign* signAt(std::string_view text)
{
    for (const Sign& sign : signs) {
        if (text.substr(0, sign.bytes.size()) == sign.bytes)
            return &sign;
    }
    return nullptr;
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\r';
}

void append(char character, std::string& tidied)
{
    // Two minute signs are how a second sign is typed in a hurry.
    if (character == '\'' && !tidied.empty() && tidied.back() == '\'')
        tidied.back() = '"';
    else
        tidied += character;
}

} // namespace

bool tidy(std::string_view typed, std::string& tidied)
{
    tidied.clear();
    while (!typed.empty()) {
        const char character = typed.front();
        std::size_t taken = 1;
        if (isBlank(character)) {
            tidied += ' ';
        } else if (character >= 'a' && character <= 'z') {
            tidied += static_cast<char>(character - 'a' + 'A');
        } else if (character > ' ' && character < '\x7F') {
            append(character, tidied);
        } else if (const Sign* sign = signAt(typed)) {
            append(sign->tidied, tidied);
            taken = sign->bytes.size();
        } else {
            return false;
        }
        typed.remove_prefix(taken);
    }
    tidied.erase(0, std::min(tidied.find_first_not_of(' '), tidied.size()));
    while (!tidied.empty() && tidied.back() == ' ')
        tidied.pop_back();
    return true;
}

} // namespace vlbase::tool::coord
