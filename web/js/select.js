// The report form's lists of choices exclude each other: choosing in one takes the others back to
// their first entry. The period goes with all of them, and so does the kind of name searched for.
"use strict";

document.addEventListener("DOMContentLoaded", () => {
    const lists = document.querySelectorAll(
        "#searchForm select:not(#reportPeriod, #searchtype, #A_searchtype)",
    );
    for (const list of lists) {
        list.addEventListener("change", () => {
            for (const other of lists) if (other !== list) other.selectedIndex = 0;
        });
    }
});
