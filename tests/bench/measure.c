/* measure RUNS A [B]: runs the shell-free commands in the files A and B in turn, each as a whole
   process, and prints for each the median wall time in microseconds and the largest peak memory in
   KiB, then the median of the ratios A/B, run by run.

   A command file holds one word a line: environment settings (NAME=value) first, then "--", then
   the program and its arguments. The output goes to /dev/null. */
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

enum { kMostWords = 200, kMostRuns = 10000, kMostCommands = 2 };

struct Command {
    char* environment[kMostWords];
    char* words[kMostWords];
    double micros[kMostRuns];
    long peak;
};

static void Die(const char* what) {
    perror(what);
    exit(2);
}

static void Load(const char* path, struct Command* command) {
    FILE* file = fopen(path, "r");
    if (file == NULL) Die(path);
    char line[65536];
    char** to = command->environment;
    while (fgets(line, sizeof line, file) != NULL) {
        line[strcspn(line, "\n")] = '\0';
        if (to != command->words && strncmp(line, "--", 3) == 0)
            to = command->words;
        else
            *to++ = strdup(line);
        *to = NULL;
    }
    fclose(file);
}

static double Now(void) {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec * 1e6 + (double)t.tv_nsec / 1e3;
}

static void Run(struct Command* command, int run) {
    const double begin = Now();
    const pid_t child = vfork();
    if (child == 0) {
        const int null = open("/dev/null", O_RDWR);
        dup2(null, 0);
        dup2(null, 1);
        dup2(null, 2);
        execve(command->words[0], command->words, command->environment);
        _exit(127);
    }
    int status = 0;
    struct rusage usage;
    if (wait4(child, &status, 0, &usage) != child || status != 0) {
        fprintf(stderr, "%s ended with status %d\n", command->words[0], status);
        exit(2);
    }
    command->micros[run] = Now() - begin;
    if (usage.ru_maxrss > command->peak) command->peak = usage.ru_maxrss;
}

static int Compare(const void* a, const void* b) {
    const double x = *(const double*)a;
    const double y = *(const double*)b;
    return (x > y) - (x < y);
}

static double Median(double* values, int count) {
    qsort(values, (size_t)count, sizeof *values, Compare);
    return values[count / 2];
}

int main(int argc, char** argv) {
    static struct Command commands[kMostCommands];
    static double ratios[kMostRuns];
    const int runs = argc > 2 ? atoi(argv[1]) : 0;
    const int count = argc - 2;
    if (runs < 1 || runs > kMostRuns || count < 1 || count > kMostCommands) {
        fputs("measure RUNS COMMAND_FILE [COMMAND_FILE]\n", stderr);
        return 2;
    }
    for (int c = 0; c < count; ++c) {
        Load(argv[2 + c], &commands[c]);
        Run(&commands[c], 0); /* to warm the caches; overwritten below */
    }
    for (int run = 0; run < runs; ++run) {
        for (int c = 0; c < count; ++c)
            Run(&commands[c], run);
        if (count == 2) ratios[run] = commands[0].micros[run] / commands[1].micros[run];
    }
    for (int c = 0; c < count; ++c)
        printf("%.0f %ld ", Median(commands[c].micros, runs), commands[c].peak);
    if (count == 2) printf("%.3f", Median(ratios, runs));
    putchar('\n');
    return 0;
}
