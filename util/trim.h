#pragma once

// Letter case, blanks (the space only) and separators, changed in place. Each returns its text; null stays null.
namespace zv {

char* upper_case(char* text);
char* lower_case(char* text);
char* commas_to_points(char* text);
char* strip_right(char* text);
char* strip_left(char* text);
char* strip(char* text);

} // namespace zv
