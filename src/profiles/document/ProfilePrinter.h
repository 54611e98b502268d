#pragma once

#include <limits>
#include <string>
#include <vector>

#include <tinyxml2.h>

/// Prints elements so that they are read again as they are. It differs from its base in that
/// - what stands inside an element that begins with text stays on one line,
/// - blanks and carriage returns that a reader would drop or change are written as character references.
class ProfilePrinter : public tinyxml2::XMLPrinter {
public:
    enum class Layout {
        Indented,
        /// No line break is added anywhere, so that equal elements give equal text wherever they stand.
        Compact
    };

    /// Behind the limit, in bytes, printing stops as soon as it can: what is longer is cut off somewhere.
    explicit ProfilePrinter(Layout layout, std::size_t limit = std::numeric_limits<int>::max());
    bool VisitEnter(const tinyxml2::XMLElement& element, const tinyxml2::XMLAttribute* attribute) override;
    bool VisitExit(const tinyxml2::XMLElement& element) override;
    bool Visit(const tinyxml2::XMLText& text) override;
    /// What was printed so far.
    std::string text() const;

protected:
    bool CompactMode(const tinyxml2::XMLElement& element) override;
    void Write(const char* data, std::size_t size) override;

private:
    bool isFull() const;

    std::size_t m_limit;
    /// For each open element, whether it or one around it begins with text.
    std::vector<bool> m_onOneLine;
};
