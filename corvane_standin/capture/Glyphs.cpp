#include "corvane_standin/capture/Glyphs.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace corvane::standin {

namespace {

/// The printable characters of ASCII, in their order, from the exclamation mark.
constexpr std::array<std::string_view, 94> asciiStrokes{
    "M0 14L0 4.6;O0 .4 .3 .3",                                                         // !
    "M0 14L0 10.6;M3 14L3 10.6",                                                       // "
    "M3 0L4.6 14;M7.4 0L9 14;M.6 9.4L11 9.4;M0 4.6L10.4 4.6",                          // #
    "A4.4 9.9 4 2.9 35 270A4.4 4.1 4.4 2.9 90 -145;M4.4 15.4L4.4 -1.4",                // $
    "O2.6 10.9 2.6 3.1;O10 3.1 2.6 3.1;M10.4 14L2.2 0",                                // %
    "M10.6 0L2.6 9.6A4.8 11.2 2.8 2.8 215 -30Q6.6 8.9 3.2 7Q0 5 0 3.4"                 //
    "A3.8 3.4 3.8 3.4 180 300Q8.6 2 10 6.4",                                           // &
    "M0 14L0 10.6",                                                                    // '
    "A6.5 6 6.5 12 142 218",                                                           // (
    "A-2 6 6.5 12 38 -38",                                                             // )
    "M3 14L3 8;M.4 12.5L5.6 9.5;M.4 9.5L5.6 12.5",                                     // *
    "M0 6L9 6;M4.5 1.5L4.5 10.5",                                                      // +
    "M.7 .2L0 -2.6",                                                                   // ,
    "M0 5L5 5",                                                                        // -
    "O0 .4 .3 .3",                                                                     // .
    "M0 -1L6 15",                                                                      // /
    "O4.6 7 4.6 7",                                                                    // 0
    "M0 11L3.6 14L3.6 0",                                                              // 1
    "A4.3 9.8 4.2 4.2 165 -28L0 0L8.8 0",                                              // 2
    "A4.2 10.5 3.9 3.5 150 -90A4.2 3.5 4.4 3.5 90 -150",                               // 3
    "M6.6 0L6.6 14L0 4L9 4",                                                           // 4
    "M8 14L1.6 14L1 7.6A4.3 4.4 4.4 4.4 135 -150",                                     // 5
    "O4.5 4.4 4.4 4.4;M7.2 14Q1 9.5 .15 4.6",                                          // 6
    "M0 14L8.8 14L3 0",                                                                // 7
    "O4.4 10.5 3.7 3.5;O4.4 3.5 4.4 3.5",                                              // 8
    "O4.4 9.6 4.4 4.4;M8.75 9.4Q8 4.5 1.8 0",                                          // 9
    "O0 .4 .3 .3;O0 8 .3 .3",                                                          // :
    "M.7 .2L0 -2.6;O.7 8 .3 .3",                                                       // ;
    "M8 11L0 6L8 1",                                                                   // <
    "M0 8L9 8;M0 4L9 4",                                                               // =
    "M0 11L8 6L0 1",                                                                   // >
    "A3.8 10.3 3.8 3.7 170 -55Q3.9 5.8 3.9 4.4;O3.9 .4 .3 .3",                         // ?
    "O6.6 5.6 2.8 3.2;M9.4 8.8L9.4 4.6A11.1 4.6 1.7 2.2 180 360L12.8 6"                //
    "A6.4 6 6.4 7.4 0 310",                                                            // @
    "M0 0L5.25 14L10.5 0;M1.9 5L8.6 5",                                                // A
    "M0 0L0 14L5 14A5 10.75 3.6 3.25 90 -90L0 7.5;M5 7.5A5.2 3.75 4 3.75 90 -90L0 0",  // B
    "A6.6 7 6.6 7 48 312",                                                             // C
    "M0 0L0 14L4.2 14A4.2 7 6.4 7 90 -90L0 0",                                         // D
    "M8 14L0 14L0 0L8 0;M0 7.3L7 7.3",                                                 // E
    "M8 14L0 14L0 0;M0 7L6.8 7",                                                       // F
    "A6.5 7 6.5 7 46 318L11.3 6.6L7.2 6.6",                                            // G
    "M0 0L0 14;M10 0L10 14;M0 7.3L10 7.3",                                             // H
    "M0 0L0 14",                                                                       // I
    "M6.5 14L6.5 3.6A3.25 3.6 3.25 3.6 0 -165",                                        // J
    "M0 0L0 14;M8.8 14L0 5.2;M3.4 8.5L9.4 0",                                          // K
    "M0 14L0 0L7.4 0",                                                                 // L
    "M0 0L0 14L6 3.5L12 14L12 0",                                                      // M
    "M0 0L0 14L9.6 0L9.6 14",                                                          // N
    "O6.8 7 6.8 7",                                                                    // O
    "M0 0L0 14L5 14A5 10.2 4.1 3.8 90 -90L0 6.4",                                      // P
    "O6.8 7 6.8 7;M8.4 4L13 -.8",                                                      // Q
    "M0 0L0 14L5 14A5 10.2 4.1 3.8 90 -90L0 6.4;M4.8 6.4L9.2 0",                       // R
    "A4.6 10.5 4.2 3.5 35 270A4.6 3.5 4.6 3.5 90 -145",                                // S
    "M0 14L10 14;M5 14L5 0",                                                           // T
    "M0 14L0 4.8A4.8 4.8 4.8 4.8 180 360L9.6 14",                                      // U
    "M0 14L5.2 0L10.4 14",                                                             // V
    "M0 14L3.8 0L7.6 13L11.4 0L15.2 14",                                               // W
    "M0 14L9.4 0;M9.4 14L0 0",                                                         // X
    "M0 14L4.9 6.6L9.8 14;M4.9 6.6L4.9 0",                                             // Y
    "M0 14L9 14L0 0L9.2 0",                                                            // Z
    "M3.4 15L0 15L0 -3L3.4 -3",                                                        // [
    "M0 15L6 -1",                                                                      // backslash
    "M0 15L3.4 15L3.4 -3L0 -3",                                                        // ]
    "M0 9L4 14L8 9",                                                                   // ^
    "M0 -2L9 -2",                                                                      // _
    "M0 14L2 11.6",                                                                    // `
    "O4.3 5 4.3 5;M8.6 10L8.6 0",                                                      // a
    "M0 15L0 0;O4.3 5 4.3 5",                                                          // b
    "A4.4 5 4.4 5 48 312",                                                             // c
    "O4.3 5 4.3 5;M8.6 15L8.6 0",                                                      // d
    "M.1 5.2L8.7 5.2A4.4 5 4.3 5 2 318",                                               // e
    "A5 11.8 3 3.1 80 180L2 0;M0 9.6L4.8 9.6",                                         // f
    "O4.3 5 4.3 5;M8.6 10L8.6 -.6A4.5 -.6 4.1 3.5 0 -150",                             // g
    "M0 15L0 0;M0 5.8A3.9 5.9 3.9 4.1 180 0L7.8 0",                                    // h
    "M0 10L0 0;O0 13.7 .3 .3",                                                         // i
    "M2.2 10L2.2 -1.2A-.2 -1.2 2.4 2.6 0 -80;O2.2 13.7 .3 .3",                         // j
    "M0 15L0 0;M6.8 10L0 3.4;M2.7 6L7.4 0",                                            // k
    "M0 15L0 0",                                                                       // l
    "M0 10L0 0;M0 6A3.2 6.2 3.2 3.8 180 0L6.4 0;M6.4 6A9.6 6.2 3.2 3.8 180 0L12.8 0",  // m
    "M0 10L0 0;M0 5.8A3.9 5.9 3.9 4.1 180 0L7.8 0",                                    // n
    "O4.5 5 4.5 5",                                                                    // o
    "M0 10L0 -4;O4.3 5 4.3 5",                                                         // p
    "O4.3 5 4.3 5;M8.6 10L8.6 -4",                                                     // q
    "M0 10L0 0;A3.6 6.3 3.6 3.7 180 62",                                               // r
    "A3.5 7.5 3.2 2.5 35 270A3.5 2.5 3.5 2.5 90 -145",                                 // s
    "M2 13L2 3A4.8 3 2.8 3 180 275;M0 9.8L5 9.8",                                      // t
    "M0 10L0 4.1A3.9 4.1 3.9 4.1 180 360;M7.8 10L7.8 0",                               // u
    "M0 10L4 0L8 10",                                                                  // v
    "M0 10L3 0L6 9.4L9 0L12 10",                                                       // w
    "M0 10L7.4 0;M7.4 10L0 0",                                                         // x
    "M0 10L4.1 0;M8.2 10L3.6 -1.6Q2.6 -4 .2 -3.9",                                     // y
    "M0 10L7 10L0 0L7.2 0",                                                            // z
    "M4 15Q1.8 15 1.8 12L1.8 8Q1.8 6 0 6Q1.8 6 1.8 4L1.8 0Q1.8 -3 4 -3",               // {
    "M0 15L0 -3",                                                                      // |
    "M0 15Q2.2 15 2.2 12L2.2 8Q2.2 6 4 6Q2.2 6 2.2 4L2.2 0Q2.2 -3 0 -3",               // }
    "M0 5Q2 8 4.5 6Q7 4 9 7",                                                          // ~
};

constexpr std::string_view boxStrokes = "M0 0L0 13L8 13L8 0L0 0";

struct NamedStrokes {
  char32_t character;
  std::string_view strokes;
};

constexpr std::array otherStrokes{
    NamedStrokes{U'£', "A5.4 10.6 3 3.4 30 180L2.4 3Q2.4 1 0 0L8.6 0;M0 6.6L6.6 6.6"},
    NamedStrokes{U'¨', "O0 13.5 .3 .3;O4.2 13.5 .3 .3"},
    NamedStrokes{U'°', "O2 12 2 2"},
    NamedStrokes{U'´', "M2.4 14.4L0 12"},
    NamedStrokes{U'·', "O0 5.5 .3 .3"},
    NamedStrokes{U'¸', "M1.4 0Q3 -2.6 0 -3"},
    NamedStrokes{U'×', "M0 2L7 9;M7 2L0 9"},
    NamedStrokes{U'ß', "M0 0L0 11A3.6 11.2 3.6 3.6 180 -70A4 4 4.2 4 60 -120"},
    NamedStrokes{U'˜', "M0 12.8Q1.6 14.8 3.4 13.4Q5.2 12 6.8 14"},
    NamedStrokes{U'–', "M0 5L8 5"},
    NamedStrokes{U'—', "M0 5L12 5"},
    NamedStrokes{U'‘', "M0 14L.8 10.8"},
    NamedStrokes{U'’', "M.8 14L0 10.8"},
    NamedStrokes{U'“', "M0 14L.8 10.8;M3.4 14L4.2 10.8"},
    NamedStrokes{U'”', "M.8 14L0 10.8;M4.2 14L3.4 10.8"},
    NamedStrokes{U'•', "O1 5 1 1"},
    NamedStrokes{U'…', "O0 .4 .3 .3;O4.6 .4 .3 .3;O9.2 .4 .3 .3"},
    NamedStrokes{U'‹', "M5 12L0 6L5 0"},
    NamedStrokes{U'›', "M0 12L5 6L0 0"},
    NamedStrokes{U'€', "A7.2 7 6 7 50 310;M0 8.6L7.4 8.6;M0 5.6L6.8 5.6"},
    NamedStrokes{U'−', "M0 6L9 6"},
    NamedStrokes{U'✓', "M0 6L4 1.6L11 11.4"},
};

/// Letters of Latin-1 with marks, each with its letter and mark.
struct MarkedLetter {
  char32_t character;
  ComposedLetter parts;
};

constexpr std::array markedLetters{
    MarkedLetter{U'Ä', {U'A', U'¨'}}, MarkedLetter{U'Ö', {U'O', U'¨'}},
    MarkedLetter{U'Ü', {U'U', U'¨'}}, MarkedLetter{U'ä', {U'a', U'¨'}},
    MarkedLetter{U'ë', {U'e', U'¨'}}, MarkedLetter{U'ö', {U'o', U'¨'}},
    MarkedLetter{U'ü', {U'u', U'¨'}}, MarkedLetter{U'á', {U'a', U'´'}},
    MarkedLetter{U'é', {U'e', U'´'}}, MarkedLetter{U'É', {U'E', U'´'}},
    MarkedLetter{U'í', {U'ı', U'´'}}, MarkedLetter{U'ó', {U'o', U'´'}},
    MarkedLetter{U'ú', {U'u', U'´'}}, MarkedLetter{U'à', {U'a', U'`'}},
    MarkedLetter{U'è', {U'e', U'`'}}, MarkedLetter{U'ù', {U'u', U'`'}},
    MarkedLetter{U'â', {U'a', U'^'}}, MarkedLetter{U'ê', {U'e', U'^'}},
    MarkedLetter{U'î', {U'ı', U'^'}}, MarkedLetter{U'ô', {U'o', U'^'}},
    MarkedLetter{U'û', {U'u', U'^'}}, MarkedLetter{U'ã', {U'a', U'˜'}},
    MarkedLetter{U'ñ', {U'n', U'˜'}}, MarkedLetter{U'õ', {U'o', U'˜'}},
    MarkedLetter{U'å', {U'a', U'°'}}, MarkedLetter{U'ç', {U'c', U'¸'}},
};

template <class Table>
auto findCharacter(const Table& table, char32_t character) {
  return std::find_if(table.begin(), table.end(),
                      [character](const auto& each) { return each.character == character; });
}

}  // namespace

std::string_view glyphStrokes(char32_t character) {
  constexpr char32_t firstAscii = U'!';
  if (character >= firstAscii && character - firstAscii < asciiStrokes.size()) {
    return asciiStrokes[character - firstAscii];
  }
  if (character == U'ı') return "M0 10L0 0";
  const auto found = findCharacter(otherStrokes, character);
  return found == otherStrokes.end() ? boxStrokes : found->strokes;
}

ComposedLetter composedLetter(char32_t character) {
  const auto found = findCharacter(markedLetters, character);
  return found == markedLetters.end() ? ComposedLetter{character} : found->parts;
}

}  // namespace corvane::standin
