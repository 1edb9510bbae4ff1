#pragma once

#include <mongoc/mongoc.h>

#include <string>

/// Prints what a step of an examination found out.
void good(const std::string& step, const std::string& text);
/// @return false
bool bad(const std::string& step, const std::string& text, const std::string& advice);

/// Looks at one host of a connection string: its address, its port, and TLS where the string asks for it. Prints a line
/// for each. @return whether all is right
bool lookAtHost(const mongoc_uri_t& uri, const mongoc_host_list_t& host);
