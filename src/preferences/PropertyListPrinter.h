#pragma once

#include <cstddef>

#include <tinyxml2.h>

/// Prints a document into memory such that every text survives the way through the parser: it would turn
/// carriage returns into line feeds and drop a text that is nothing but blanks, so both are written as
/// character references.
class PropertyListPrinter : public tinyxml2::XMLPrinter {
public:
    PropertyListPrinter();

    using XMLPrinter::Visit;
    bool Visit(const tinyxml2::XMLText& text) override;

protected:
    void Write(const char* data, std::size_t size) override;
    void Putc(char character) override;
};
