/* The least that a CGI program can be: what every page is measured against. */
#include <stdio.h>

int main(void) {
    puts("Content-type: text/html\n\n<p>Hello</p>");
    return 0;
}
