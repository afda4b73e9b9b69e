# Writes the C++ file that holds a page: cmake -D PAGE=page.html -D SOURCE=PageTemplate.cpp -P ItmsPage.cmake
file(READ "${PAGE}" page)
if(page MATCHES "\\)itmspage\"")
    message(FATAL_ERROR "${PAGE}: has the text that ends it in C++")
endif()
file(WRITE "${SOURCE}" "#include \"report/PageTemplate.h\"

namespace report {

std::string_view pageTemplate()
{
    static constexpr char page[] = R\"itmspage(${page})itmspage\";
    return {page, sizeof page - 1};
}

} // namespace report
")
