#pragma once

#include <VLBase/vlbase_export.h>

#include <QByteArray>
#include <QRect>
#include <QString>

#include <memory>

/// Reads the window geometry that widgets save (`QWidget::saveGeometry`), without a widget.
///
/// Records of major version 1 are read. Today's widgets write later ones, in another form: they
/// are not valid, but tell their version. Fields that a shortened record lacks read as zero.
///
///     GeometryArrayParser geometry(settings.value("geometry").toByteArray());
///     if (geometry.isValid() && geometry.maximized())
class VLBASE_EXPORT GeometryArrayParser
{
public:
    /// Not valid: version 0, null rectangles, screen -1.
    GeometryArrayParser();
    explicit GeometryArrayParser(const QByteArray& record);
    /// \param hexText the record in hexadecimal digits of any case; other characters are skipped.
    explicit GeometryArrayParser(const QString& hexText);
    explicit GeometryArrayParser(const char* hexText);

    GeometryArrayParser(const GeometryArrayParser& other);
    GeometryArrayParser& operator=(const GeometryArrayParser& other);
    ~GeometryArrayParser();

    /// Reads another record.
    /// \return whether it is valid. One that is none, by its first four bytes, leaves all other
    ///         fields as they were; one of another version leaves all but the version.
    bool setGeometryArray(const QByteArray& record);
    bool setHexString(const QString& hexText);

    quint16 majorVersion() const;
    quint16 minorVersion() const;
    /// The window with its frame, in pixels of the desktop.
    QRect frameGeometry() const;
    /// The window without its frame, as it is when neither maximized nor full screen.
    QRect normalGeometry() const;
    int screenNumber() const;
    /// 0 or 1 from widgets; other values are told as they are.
    unsigned char maximized() const;
    unsigned char fullScreen() const;
    bool isValid() const;

private:
    struct Record;
    std::unique_ptr<Record> m_Record;
};
