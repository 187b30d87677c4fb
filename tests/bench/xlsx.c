/* xlsx KINDS IN.tsv OUT.xlsx: the bare loop: writes the lines of a tab-separated file as the rows of a
   workbook, in the writer's constant-memory mode. KINDS has a letter a column: t text, n number, d
   duration in seconds, m money, s time stamp. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <xlsxwriter.h>

int main(int argc, char** argv) {
    if (argc != 4) {
        fputs("xlsx KINDS IN.tsv OUT.xlsx\n", stderr);
        return 2;
    }
    const char* kinds = argv[1];
    FILE* in = fopen(argv[2], "r");
    if (in == NULL) {
        perror(argv[2]);
        return 2;
    }
    lxw_workbook_options options = {.constant_memory = LXW_TRUE};
    lxw_workbook* book = workbook_new_opt(argv[3], &options);
    lxw_worksheet* sheet = workbook_add_worksheet(book, NULL);
    lxw_format* duration = workbook_add_format(book);
    format_set_num_format(duration, "[h]:mm:ss");
    lxw_format* money = workbook_add_format(book);
    format_set_num_format(money, "#,##0.00");
    lxw_format* stamp = workbook_add_format(book);
    format_set_num_format(stamp, "yyyy-mm-dd hh:mm:ss");

    char* line = NULL;
    size_t capacity = 0;
    for (lxw_row_t row = 0; getline(&line, &capacity, in) > 0; ++row) {
        char* rest = line;
        line[strcspn(line, "\n")] = '\0';
        for (lxw_col_t column = 0; kinds[column] != '\0'; ++column) {
            const char* cell = strsep(&rest, "\t");
            lxw_datetime at = {0};
            if (cell == NULL || *cell == '\0') continue;
            switch (kinds[column]) {
                case 't':
                    worksheet_write_string(sheet, row, column, cell, NULL);
                    break;
                case 'n':
                    worksheet_write_number(sheet, row, column, atof(cell), NULL);
                    break;
                case 'd':
                    worksheet_write_number(sheet, row, column, atof(cell) / 86400, duration);
                    break;
                case 'm':
                    worksheet_write_number(sheet, row, column, atof(cell), money);
                    break;
                default:
                    sscanf(cell, "%d-%d-%d %d:%d:%lf", &at.year, &at.month, &at.day, &at.hour,
                           &at.min, &at.sec);
                    worksheet_write_datetime(sheet, row, column, &at, stamp);
            }
        }
    }
    free(line);
    fclose(in);
    return workbook_close(book) == LXW_NO_ERROR ? 0 : 1;
}
