# Writes a C++ file that holds a text: cmake -DINPUT=file -DOUTPUT=file.cpp -DHEADER=header -DFUNCTION=name -P EmbedText.cmake
# The header declares std::string_view FUNCTION() in namespace orbinex.
file(READ "${INPUT}" hex HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(................................................................................)" "\\1\n    " bytes "${bytes}")
file(WRITE "${OUTPUT}" "#include \"${HEADER}\"

namespace orbinex {

namespace {
constexpr unsigned char text[] = {
    ${bytes}0};
}  // namespace

std::string_view ${FUNCTION}() {
    return {reinterpret_cast<const char*>(text), sizeof text - 1};
}

}  // namespace orbinex
")
