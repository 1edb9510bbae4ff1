# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# Writes the text of source files into a C++ file, from which the tour prints the code of its steps.
# Variables: OUT, the file to write; FILES, the files to read.
set(text "#include \"text.h\"\n\nnamespace tour {\n\nconst std::vector<std::string_view> sources = {\n")
foreach(file IN LISTS FILES)
  file(READ ${file} content)
  string(APPEND text "R\"source(${content})source\",\n")
endforeach()
file(WRITE ${OUT} "${text}};\n\n} // namespace tour\n")
