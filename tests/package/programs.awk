# SPDX-License-Identifier: MIT
# Takes the programs out of a page, with the lines for CMake and the compiler that follow each:
#   awk -v folder=FOLDER -f programs.awk PAGE
# makes FOLDER/1/app.cpp, FOLDER/1/CMakeLists.txt and FOLDER/1/command, FOLDER/2/...

/^```/ && inside {
    inside = 0
    if (kind == "cpp" && text ~ /int main\(/) {
        ++count
        system("mkdir -p '" folder "/" count "'")
        printf "%s", text >(folder "/" count "/app.cpp")
    } else if (count && kind == "cmake") {
        sub(/target_link_libraries/, "add_executable(app app.cpp)\n&", text)
        printf "cmake_minimum_required(VERSION 3.25)\nproject(app LANGUAGES CXX)\n%s", text \
            >(folder "/" count "/CMakeLists.txt")
    } else if (count && text ~ /^g\+\+ /) {
        printf "%s", text >(folder "/" count "/command")
    }
    next
}
/^```/ { inside = 1; kind = substr($0, 4); text = ""; next }
inside { text = text $0 "\n" }
