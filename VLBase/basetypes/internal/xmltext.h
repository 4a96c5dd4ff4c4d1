#pragma once

#include <QString>

class QDomDocument;
class QDomElement;

namespace vlbase::basetypes {

/// Whether a reader gets the text as it was written: it is made of XML's characters, and a carriage
/// return, which only a reference keeps, does not stand among nothing but blanks, which only a
/// section without references keeps.
bool comesBack(const QString& text);

/// Appends an element that holds a text to `parent`.
void appendText(QDomDocument& doc, QDomElement& parent, const QString& tag, const QString& text);

/// All text below an element. `QDomElement::text` calls itself for each level of nesting, which a
/// damaged file can make too many for the stack.
QString textOf(const QDomElement& element);

} // namespace vlbase::basetypes
