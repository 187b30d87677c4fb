// The catalogue: the choice of what is listed takes effect at once, a box finds reports while
// somebody types, and a star is set without leaving the place. The list works without all that.
"use strict";

document.addEventListener("DOMContentLoaded", () => {
    const catalogue = () => document.getElementById("catalogue");

    // Headings stay only above rows that do, and say how much is found.
    function find(words) {
        for (const row of catalogue().querySelectorAll(".reportListRow")) {
            const text = row.textContent.toLowerCase();
            row.hidden = !words.every((word) => text.includes(word));
        }
        for (const heading of catalogue().querySelectorAll("h5")) {
            const list = heading.nextElementSibling;
            heading.hidden = list.querySelector(".reportListRow:not([hidden])") === null;
        }
        const none = catalogue().querySelector("#reportSearchNone");
        none.hidden = words.length === 0 || catalogue().querySelector(".reportListRow:not([hidden])") !== null;
    }

    function enhance() {
        const form = document.getElementById("reportOptions");
        const box = document.getElementById("reportSearch");
        if (!form || !box) return;
        form.querySelector("button").hidden = true;
        form.elements.filterVal.addEventListener("change", () => form.submit());
        form.addEventListener("submit", (event) => {
            if (document.activeElement === box) event.preventDefault();
        });
        const none = document.createElement("p");
        none.id = "reportSearchNone";
        none.className = "hint";
        none.setAttribute("role", "status");
        none.textContent = "No report has these words.";
        none.hidden = true;
        catalogue().append(none);
        box.closest("label").hidden = catalogue().querySelector(".reportListRow") === null;
        box.addEventListener("input", () => {
            find(box.value.toLowerCase().split(/\s+/).filter(Boolean));
        });
    }

    // The page that the star's link leads to brings the list as it is then.
    async function follow(link) {
        const report = link.closest(".reportListRow").querySelector("a").getAttribute("href");
        const words = document.getElementById("reportSearch").value;
        // An address with a password in it, such as the page's own may be, cannot be fetched.
        const address = new URL(link.getAttribute("href"), location.origin + location.pathname);
        const answer = await fetch(address, { credentials: "same-origin" });
        const page = new DOMParser().parseFromString(await answer.text(), "text/html");
        const fresh = page.getElementById("catalogue");
        // What has to be told is shown by the page itself.
        if (!answer.ok || !fresh || page.querySelector("main .notice, main .reportWarning")) {
            location.assign(link.href);
            return;
        }
        catalogue().replaceWith(document.importNode(fresh, true));
        enhance();
        const box = document.getElementById("reportSearch");
        box.value = words;
        box.dispatchEvent(new Event("input"));
        const row = [...catalogue().querySelectorAll(".reportListRow")].find(
            (each) => each.querySelector("a").getAttribute("href") === report,
        );
        row?.querySelector(".favourite a")?.focus();
    }

    document.addEventListener("click", (event) => {
        const link = event.target.closest(".favourite a");
        if (!link || event.ctrlKey || event.metaKey || event.shiftKey) return;
        event.preventDefault();
        follow(link).catch(() => location.assign(link.href));
    });
    enhance();
});
