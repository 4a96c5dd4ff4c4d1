#pragma once

#include <VLBase/errorhandling/vltextfile.h>
#include <VLBase/vlbase_export.h>

#include <QString>

#include <string>

/// The text log of the error handler: a text file of this user's own, created when it is missing.
///
/// On Linux links are not followed; where one stands, or a file of somebody else, the user's
/// number goes before the name's extension.
class VLBASE_EXPORT LogFile : public VLTextFile
{
public:
    explicit LogFile(const QString& path);
    ~LogFile() override;

    /// Writes one line.
    /// \return whether `AppendLine` counted anything, which says nothing about the disk
    bool AddMessage(const std::string& line);
};
