// Module.h: shared libraries beside the program, for what only few pages need.
#pragma once

// The entry of that name in that module, which lies in the program's own folder and nowhere else.
// It stays loaded. One that is missing is reported on the console and thrown as a text that names
// `purpose` ("PDF files").
void* LoadModule(const char* file, const char* entry, const char* purpose);
