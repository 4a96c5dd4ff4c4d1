#pragma once

#include <QString>
#include <QStringView>

#include <functional>

namespace vlbase::utilities {

/// Cuts a well-formed document into its pieces as they are written.
class XmlLexer
{
public:
    enum class Kind {
        Text,
        CharacterData,
        Comment,
        Instruction,
        Doctype,
        StartTag,
        EmptyTag,
        EndTag
    };

    /// A piece of a token. Tags and the document type come whole; the others in as many pieces as
    /// it takes, of which the first one begins the token.
    struct Piece
    {
        Kind kind;
        QStringView text;
        bool begins;
    };

    using Sink = std::function<void(const Piece&)>;

    explicit XmlLexer(Sink sink)
        : m_sink(std::move(sink))
    {
    }

    /// Takes the next stretch of the document and hands out what can be told of it.
    void feed(QStringView stretch);

    /// Hands out what is left at the document's end.
    void finish();

private:
    bool step();
    bool stepText();
    bool stepMarkup();
    bool stepUntil(QStringView terminator);
    bool stepTag();
    bool stepDoctype();
    void enter(Kind kind);
    void handOut(qsizetype length);
    QStringView rest() const { return QStringView(m_buffer).sliced(m_begin); }

    Sink m_sink;
    QString m_buffer;
    qsizetype m_begin = 0;   ///< of what was not handed out yet
    qsizetype m_scanned = 0; ///< of `rest()`, while its end is sought
    Kind m_kind = Kind::Text;
    bool m_isNew = true; ///< nothing of the token was handed out
    bool m_isAtEnd = false;
    char16_t m_quote = 0;      ///< that is open in a tag or the document type
    bool m_isInSubset = false; ///< between the brackets of the document type
    QStringView m_skipTo;      ///< the end of a comment or instruction there
};

} // namespace vlbase::utilities
