#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

/// A structured data block that a log writer can send.
class VLBASE_EXPORT ILogData
{
public:
    ILogData();
    ILogData(const ILogData& other);
    ILogData& operator=(const ILogData& other);
    virtual ~ILogData();

    virtual QString GetDataText() = 0;
    virtual QString GetDataType() = 0;

    /// Whether the text is wanted as XML; false at first. Read by implementations only.
    bool GetXMLMode() const { return m_xmlMode; }
    void SetXMLMode(bool xmlMode) { m_xmlMode = xmlMode; }

private:
    bool m_xmlMode = false;
};
