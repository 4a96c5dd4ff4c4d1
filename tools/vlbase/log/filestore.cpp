#include "filestore.h"

#include "tools/logreading/platform/nativefile.h"

namespace vlbase::tool::log {
namespace {

class NativeGrowingFile : public GrowingFile
{
public:
    bool open(const std::string& name)
    {
        return m_file.open(name, platform::NativeFile::Mode::Append);
    }
    bool isRegular() const { return m_file.isRegular(); }
    bool lock() { return m_file.lock(); }
    std::int64_t size() const override { return m_file.size(); }
    std::int64_t readAt(std::int64_t offset, char* data, std::size_t size) const override
    {
        return m_file.readAt(offset, data, size);
    }
    std::int64_t append(const char* data, std::size_t size) override
    {
        return m_file.append(data, size);
    }
    bool cutTo(std::int64_t size) override { return m_file.cutTo(size); }
    bool isCalled(const std::string& name) const override
    {
        return platform::identityOf(name) == m_file.identity();
    }

private:
    platform::NativeFile m_file;
};

class NativeFileStore : public FileStore
{
public:
    std::unique_ptr<GrowingFile> open(const std::string& name) override
    {
        auto file = std::make_unique<NativeGrowingFile>();
        m_refusal.clear();
        if (!file->open(name))
            return nullptr;
        if (!file->isRegular())
            m_refusal = QStringLiteral("it is no regular file");
        else if (!file->lock())
            m_refusal = QStringLiteral("another owner writes to it");
        if (!m_refusal.isEmpty())
            return nullptr;
        return file;
    }
    bool exists(const std::string& name) override { return platform::identityOf(name).isKnown; }
    bool rename(const std::string& from, const std::string& to) override
    {
        return platform::renameFile(from, to);
    }
    bool remove(const std::string& name) override { return platform::removeFile(name); }
    QString errorText() override { return m_refusal.isEmpty() ? qt_error_string() : m_refusal; }

private:
    QString m_refusal; // of the last file to be opened, by ourselves
};

} // namespace

std::unique_ptr<FileStore> makeNativeFileStore()
{
    return std::make_unique<NativeFileStore>();
}

} // namespace vlbase::tool::log
