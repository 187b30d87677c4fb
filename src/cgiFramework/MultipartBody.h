// MultipartBody.h: takes the body of a form with files apart, in place.
#pragma once

#include <cstddef>
#include <string>

#include "cgiFramework/WebContext.h"

// The parts of a multipart/form-data body. Boundaries are found by length, so that files may hold
// zero bytes.
class MultipartBody {
  public:
    // Borrows the body, which is written to (plain fields are terminated in place) and must be
    // followed by a zero byte. `boundary` is the content type's, without the leading "--".
    MultipartBody(char* body, size_t size, const std::string& boundary);

    // Fills name, filename, content and value, or data and length, from the next part. Answers
    // false when there is none. A file without a boundary behind it reaches to the end of the body;
    // a plain field without one is dropped.
    //
    // Plain fields of at most 1000 bytes are copied to `value`, without zero bytes. Longer ones and
    // files stay in the body, where `data` points at `length` bytes.
    bool Next(WebArgument& part);

  private:
    struct Boundary {
        char* line;    // where the boundary's line begins; the end of the body when there is none
        char* behind;  // where the part behind it begins; null when there is none
    };
    Boundary FindBoundary(char* from) const;

    char* const begin_;
    char* const end_;
    const std::string marker_;
    char* next_;  // the part to read; null at the end
};

// The boundary that a content type announces. Throws "POST Data no boundary".
std::string MultipartBoundary(const char* contentType);
