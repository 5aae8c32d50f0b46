// What is wrong with a text that was to be XML.
#pragma once

#include <QString>

// Where libxml2 has given up on a text. Line and column count from 1; line 0 is no fault.
struct TextFault {
    int line = 0;
    int column = 0;
    QString reason;
};

// What libxml2 has found on this thread since it was told to forget.
void forget_text_fault();
TextFault last_text_fault();
