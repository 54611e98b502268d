#pragma once

#include <string>

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

    explicit ProfilePrinter(Layout layout);
    bool Visit(const tinyxml2::XMLText& text) override;
    /// What was printed so far.
    std::string text() const;

protected:
    bool CompactMode(const tinyxml2::XMLElement& element) override;
};
