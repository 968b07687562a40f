#include "desktop/freedesktop_association.h"

#include <fstream>
#include <sstream>

#include "desktop/key_file.h"

namespace korvatek::settings {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDesktopGroup = "Desktop Entry";
constexpr const char* kDefaultsGroup = "Default Applications";

std::string readText(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeText(const fs::path& path, const std::string& text) {
    std::error_code ignored;
    fs::create_directories(path.parent_path(), ignored);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

std::string xmlEscaped(const std::string& text) {
    std::string escaped;
    for (char c : text) {
        switch (c) {
            case '&': escaped += "&amp;"; break;
            case '<': escaped += "&lt;"; break;
            case '>': escaped += "&gt;"; break;
            case '"': escaped += "&quot;"; break;
            default: escaped += c;
        }
    }
    return escaped;
}

// The text of attribute `name` at its first appearance, or empty.
std::string attributeValue(const std::string& xml, const std::string& name) {
    const std::string opening = name + "=\"";
    const auto start = xml.find(opening);
    if (start == std::string::npos) return {};
    const auto valueStart = start + opening.size();
    const auto end = xml.find('"', valueStart);
    return end == std::string::npos ? std::string() : xml.substr(valueStart, end - valueStart);
}

std::string packageXml(const CFileAssociation& association) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    xml += "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n";
    xml += "  <mime-type type=\"" + xmlEscaped(FreedesktopAssociationStore::mimeTypeOf(association.fileType)) +
           "\">\n";
    if (!association.description.empty()) xml += "    <comment>" + xmlEscaped(association.description) + "</comment>\n";
    xml += "    <generic-icon name=\"image-x-generic\"/>\n";
    xml += "    <glob pattern=\"*" + xmlEscaped(association.extension) + "\"/>\n";
    xml += "  </mime-type>\n";
    xml += "</mime-info>\n";
    return xml;
}

// The MimeType list of a desktop entry with `type` in it.
std::string withMimeType(const std::string& list, const std::string& type) {
    std::string result;
    bool present = false;
    std::istringstream in(list);
    for (std::string item; std::getline(in, item, ';');) {
        if (item.empty()) continue;
        present = present || item == type;
        result += item + ";";
    }
    return present ? result : result + type + ";";
}

}  // namespace

FreedesktopAssociationStore::FreedesktopAssociationStore(fs::path dataHome, fs::path configHome)
    : m_dataHome(std::move(dataHome)), m_configHome(std::move(configHome)) {}

fs::path FreedesktopAssociationStore::packagePath(const std::string& extension) const {
    const std::string bare = !extension.empty() && extension.front() == '.' ? extension.substr(1) : extension;
    return m_dataHome / "mime" / "packages" / ("korvatek-" + bare + ".xml");
}

fs::path FreedesktopAssociationStore::desktopEntryPath() const {
    return m_dataHome / "applications" / kDesktopEntryName;
}

fs::path FreedesktopAssociationStore::mimeAppsPath() const { return m_configHome / "mimeapps.list"; }

bool FreedesktopAssociationStore::holdsInstalledData(const fs::path& dataDir) {
    std::error_code ec;
    return fs::is_regular_file(dataDir / "mime" / "packages" / "korvatek.xml", ec) &&
           fs::is_regular_file(dataDir / "applications" / kDesktopEntryName, ec);
}

fs::path FreedesktopAssociationStore::installedEntryPath() const {
    return m_installedData / "applications" / kDesktopEntryName;
}

void FreedesktopAssociationStore::CreateAssociation(const CFileAssociation& association) {
    if (association.extension.empty() || association.fileType.empty()) return;
    const std::string type = mimeTypeOf(association.fileType);
    if (!m_installedData.empty()) {
        writeText(mimeAppsPath(),
                  setKeyFileValue(readText(mimeAppsPath()), kDefaultsGroup, type, std::string(kDesktopEntryName) + ";"));
        return;
    }

    // The extension: a package whose glob maps it to the file type. (The desktop has no
    // counterpart of the "new file" entry, so newFileKind is not written.)
    writeText(packagePath(association.extension), packageXml(association));

    // The file type's program: a desktop entry that lists the type and opens with the command.
    std::string entry = readText(desktopEntryPath());
    entry = setKeyFileValue(entry, kDesktopGroup, "Type", "Application");
    entry = setKeyFileValue(entry, kDesktopGroup, "Name", "Korvatek");
    if (!association.description.empty())
        entry = setKeyFileValue(entry, kDesktopGroup, "Comment", association.description);
    entry = setKeyFileValue(entry, kDesktopGroup, "Exec", desktopExecArgument(association.openCommand));
    entry = setKeyFileValue(entry, kDesktopGroup, "Terminal", "false");
    entry = setKeyFileValue(entry, kDesktopGroup, "NoDisplay", "true");
    entry = setKeyFileValue(entry, kDesktopGroup, "MimeType",
                            withMimeType(keyFileValue(entry, kDesktopGroup, "MimeType").value_or(""), type));
    writeText(desktopEntryPath(), entry);

    writeText(mimeAppsPath(),
              setKeyFileValue(readText(mimeAppsPath()), kDefaultsGroup, type, std::string(kDesktopEntryName) + ";"));

    if (onPackagesChanged) onPackagesChanged(m_dataHome / "mime");
}

void FreedesktopAssociationStore::CreateContextMenuItem(const std::string& fileType, const std::string& verb,
                                                        const std::string& command) {
    // Only the "open" verb has a place in a desktop entry: its Exec line. An installed entry
    // has its own.
    if (fileType.empty() || verb != "open" || !m_installedData.empty()) return;
    writeText(desktopEntryPath(), setKeyFileValue(readText(desktopEntryPath()), kDesktopGroup, "Exec", command));
}

std::string FreedesktopAssociationStore::GetAssociatedCommand(const std::string& extension) const {
    const std::string package = readText(m_installedData.empty() ? packagePath(extension)
                                                                 : m_installedData / "mime" / "packages" / "korvatek.xml");
    std::string type = attributeValue(package, "type");
    if (!m_installedData.empty()) {  // the installed package holds all of Korvatek's types
        const std::string gpf = mimeTypeOf(kGpfFileType);
        type = package.find("type=\"" + gpf + "\"") != std::string::npos ? gpf : std::string();
    }
    const bool globbed = m_installedData.empty() ? attributeValue(package, "pattern") == "*" + extension
                                                 : package.find("pattern=\"*" + extension + "\"") != std::string::npos;
    if (type.empty() || !globbed) return kUnregisteredExtension + extension;

    const auto defaults = keyFileValue(readText(mimeAppsPath()), kDefaultsGroup, type);
    if (!defaults) return kTypeWithoutProgram;
    const std::string entryName = defaults->substr(0, defaults->find(';'));
    if (entryName.empty() || entryName.find('/') != std::string::npos) return kTypeWithoutProgram;
    fs::path entryPath = m_dataHome / "applications" / entryName;
    std::error_code ec;
    if (!m_installedData.empty() && entryName == kDesktopEntryName && !fs::exists(entryPath, ec))
        entryPath = installedEntryPath();
    const auto exec = keyFileValue(readText(entryPath), kDesktopGroup, "Exec");
    if (!exec) return kTypeWithoutProgram;
    return cutToCommandBuffer(*exec);
}

std::string FreedesktopAssociationStore::openCommandFor(const std::string& executablePath) const {
    if (!m_installedData.empty()) {
        if (const auto exec = keyFileValue(readText(installedEntryPath()), kDesktopGroup, "Exec")) return *exec;
    }
    return desktopExecArgument(executablePath) + " %f";
}

std::string desktopExecArgument(const std::string& path) {
    static const std::string reserved = " \t\n\"'\\><~|&;$*?#()`";
    const bool quote = path.find_first_of(reserved) != std::string::npos;
    std::string argument;
    for (char c : path) {
        if (c == '%') {
            argument += "%%";  // a field code otherwise
        } else if (quote && (c == '"' || c == '`' || c == '$' || c == '\\')) {
            argument += '\\';
            argument += c;
        } else {
            argument += c;
        }
    }
    if (quote) argument = "\"" + argument + "\"";
    // The key file's own escaping comes on top: every backslash is written doubled.
    std::string value;
    for (char c : argument) value += c == '\\' ? std::string("\\\\") : std::string(1, c);
    return value;
}

}  // namespace korvatek::settings
