#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

/// Pours a plain string of significant characters into a display mask and takes it out again.
///
/// Six characters of a mask are input positions: "#" (a digit), "?" (a letter), "E" (one of "E",
/// "W", "e", "w"), "N" (one of "N", "S", "n", "s"), and "X" and "Y", which hold themselves. All
/// others are fixed text. With the mask "E###.##" the plain text "E01234" is shown as "E012.34".
///
/// A position past the mask's end fails a quality assertion when the error handler's message
/// mask asks for those (value 2), and counts as fixed text.
class VLBASE_EXPORT MaskConverter
{
public:
    MaskConverter();
    MaskConverter(const MaskConverter& other);
    MaskConverter& operator=(const MaskConverter& other);
    virtual ~MaskConverter();

    /// Stores the mask and makes its empty form the formatted text.
    /// \param placeholder ignored: it stays "_"
    void SetMask(const QString& mask, char placeholder);
    const QString& GetMask() const;
    QString& GetMaskText();

    QString& GetFormattedText();
    /// Takes the text as it is.
    void SetFormattedText(const QString& text);

    /// Pours the plain text into the mask. Positions it does not reach show the placeholder;
    /// surplus characters are dropped.
    void SetText(const QString& plain);
    /// The characters of the formatted text at the input positions, in order.
    QString GetText();

    /// Whether the mask has fixed text at the position.
    bool IsMaskChar(unsigned int position) const;

    /// What is stored when `typed` is typed at the position: the character itself where it is
    /// one that the input position accepts, at any other position the mask's character.
    /// \return false for a refused character and past the mask's end; `result` is untouched then.
    bool GetReplacementChar(unsigned int position, char typed, char& result) const;

    QString GetPlaceHolder() const;

private:
    QString m_strMaskText;
    QString m_strFormattedText;
    QString m_strPlainText;
    char m_cPlaceHolder = '_';
};
