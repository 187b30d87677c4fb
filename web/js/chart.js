// Draws the chart descriptions that the portal writes (portal/chart/OpenFlashGraph) with Chart.js, and
// puts the same figures into a table for those who cannot see, or would rather read, a chart.
//
// A chart is <figure data-chart="address of the description"> with the <div id> to draw into.
"use strict";

(() => {
    if (globalThis.lumoraCharts) return;
    const kTimeLegend = "Minutes on Calls";
    const kLeastContrast = 3; // of marks against their ground
    const kPointStyles = ["circle", "rect", "triangle", "rectRot", "crossRot", "star"];
    const kDashes = [[], [6, 3], [2, 2], [10, 3, 2, 3], [12, 4], [1, 4]];
    const kRotations = { diagonal: 45, vertical: 90 };
    const kFailed = "The chart could not be loaded. Its figures are in the report itself; please run it again.";

    // Reading a description. It comes from our own server, but a label or a value may hold anything.

    const textOf = (value) => (typeof value === "string" ? value : "");
    const listOf = (value) => (Array.isArray(value) ? value : []);
    const sizeOf = (style, least) => Math.max(Number(/font-size:\s*(\d+)/.exec(textOf(style))?.[1]) || 0, least);
    const colourOf = (value) => (/^#[0-9a-f]{6}$/i.test(value) ? value : "#12616d");

    const numberOf = (value) => {
        if (typeof value === "string" && value.trim() !== "") value = Number(value);
        return Number.isFinite(value) ? value : null;
    };

    // Where navigateTo('url') leads, if that is this very site.
    function linkOf(onClick) {
        const match = /^navigateTo\('(.*)'\)$/s.exec(textOf(onClick));
        if (!match || !URL.canParse(match[1], document.baseURI)) return null;
        const url = new URL(match[1], document.baseURI);
        return url.origin === location.origin && /^https?:$/.test(url.protocol) ? url.href : null;
    }

    function pointOf(value) {
        if (value === null || typeof value !== "object") return { value: numberOf(value), link: null, label: "" };
        return {
            value: numberOf(value.top ?? value.value ?? value.val),
            link: linkOf(value["on-click"]),
            label: textOf(value.label),
        };
    }

    function seriesOf(elements) {
        const first = elements[0] ?? {};
        if (first.type !== "bar_stack")
            return elements.map((element) => ({
                name: textOf(element.text),
                colour: colourOf(element.colour),
                tip: textOf(element.tip),
                points: listOf(element.values).map(pointOf),
            }));
        return listOf(first.keys).map((key, at) => ({
            name: textOf(key.text),
            colour: colourOf(key.colour),
            tip: textOf(first.tip),
            points: listOf(first.values).map((stack) => pointOf(listOf(stack)[at])),
        }));
    }

    // As many decimals as any value has, two at most, so that amounts of money stand alike.
    const decimalsOf = (series) =>
        Math.max(0, ...series.flatMap(({ points }) => points.map(({ value }) => `${value ?? ""}`.split(".")[1]?.length ?? 0)));

    function readDescription(description) {
        const elements = listOf(description.elements);
        const type = textOf(elements[0]?.type);
        const series = seriesOf(elements);
        const axis = description.x_axis?.labels;
        const isPie = type === "pie";
        return {
            title: textOf(description.title?.text),
            titleSize: sizeOf(description.title?.style, 14),
            textSize: sizeOf(description.x_legend?.style, 12),
            xTitle: textOf(description.x_legend?.text),
            yTitle: textOf(description.y_legend?.text),
            isTime: description.y_legend?.text === kTimeLegend,
            rotation: kRotations[axis?.rotate] ?? 0,
            max: numberOf(description.y_axis?.max),
            step: numberOf(description.y_axis?.steps),
            kind: isPie ? "pie" : type === "line" ? "line" : "bar",
            isGlass: type === "bar_glass",
            isStacked: type === "bar_stack",
            startAngle: numberOf(elements[0]?.["start-angle"]) ?? 0,
            sliceColours: listOf(elements[0]?.colours).map(colourOf),
            labels: isPie
                ? (series[0]?.points ?? []).map(({ label }) => label)
                : listOf(axis?.labels).map((label) => textOf(label?.text)),
            decimals: Math.min(decimalsOf(series), 2),
            series,
        };
    }

    // Texts

    function show(chart, value, decimals = chart.decimals) {
        if (value === null || value === undefined) return "-";
        if (!chart.isTime)
            return value.toLocaleString("en-GB", { minimumFractionDigits: decimals, maximumFractionDigits: 2 });
        const two = (number) => String(Math.floor(number)).padStart(2, "0");
        const seconds = Math.abs(value);
        return `${value < 0 ? "-" : ""}${two(seconds / 3600)}:${two((seconds / 60) % 60)}:${two(seconds % 60)}`;
    }

    const sum = (points) => points.reduce((total, { value }) => total + (value ?? 0), 0);

    function totalOf(chart, seriesAt, at) {
        if (chart.kind === "pie") return sum(chart.series[0].points);
        if (chart.isStacked) return sum(chart.series.map(({ points }) => points[at] ?? { value: 0 }));
        return sum(chart.series[seriesAt].points);
    }

    // The lines of a point's tip.
    function tipOf(chart, seriesAt, at) {
        const series = chart.series[seriesAt];
        const words = {
            val: show(chart, series.points[at]?.value),
            label: chart.labels[at] ?? "",
            total: show(chart, totalOf(chart, seriesAt, at)),
            key: series.name,
        };
        return series.tip.split("<br>").map((line) => line.replace(/#(val|label|total|key)#/g, (_, word) => words[word]));
    }

    // Colours

    const channels = (colour) => [1, 3, 5].map((at) => parseInt(colour.slice(at, at + 2), 16));
    const hex = (rgb) => `#${rgb.map((c) => Math.round(c).toString(16).padStart(2, "0")).join("")}`;
    const mix = (colour, other, share) => {
        const to = channels(other);
        return hex(channels(colour).map((c, i) => c + (to[i] - c) * share));
    };
    const luminance = (colour) => {
        const [r, g, b] = channels(colour).map((c) => (c <= 10.31 ? c / 3294.6 : ((c / 255 + 0.055) / 1.055) ** 2.4));
        return 0.2126 * r + 0.7152 * g + 0.0722 * b;
    };
    const contrast = (a, b) => {
        const [low, high] = [luminance(a), luminance(b)].sort((x, y) => x - y);
        return (high + 0.05) / (low + 0.05);
    };

    // The colour, lighter on a dark ground or darker on a light one until it stands out.
    function standingOut(colour, ground) {
        const away = luminance(ground) < 0.2 ? "#ffffff" : "#000000";
        let share = 0;
        while (share < 1 && contrast(mix(colour, away, share), ground) < kLeastContrast) share += 0.05;
        return mix(colour, away, Math.min(share, 1));
    }

    const kPaper = { text: "#000000", muted: "#333333", line: "#cccccc", surface: "#ffffff", isDark: false };

    function themeOfPage() {
        const style = getComputedStyle(document.documentElement);
        const read = (name) => {
            const value = style.getPropertyValue(name).trim();
            return /^#[0-9a-f]{3}$/i.test(value) ? `#${[...value.slice(1)].map((c) => c + c).join("")}` : value;
        };
        const surface = read("--surface");
        return {
            text: read("--text"),
            muted: read("--muted"),
            line: read("--line"),
            surface,
            isDark: luminance(surface) < 0.2,
        };
    }

    // Chart.js's configuration

    // On a dark ground the fill follows the edge, so that dark colours do not sink into it.
    const fillOf = (colour, theme) => (theme.isDark ? standingOut(colour, theme.surface) : colour);

    function glass(colour, theme) {
        const fill = fillOf(colour, theme);
        return ({ chart }) => {
            if (!chart.chartArea) return fill;
            const { top, bottom } = chart.chartArea;
            const gradient = chart.ctx.createLinearGradient(0, top, 0, bottom);
            gradient.addColorStop(0, mix(fill, "#ffffff", 0.45));
            gradient.addColorStop(1, fill);
            return gradient;
        };
    }

    function datasetOf(chart, theme, series, at) {
        const data = series.points.map(({ value }) => value);
        if (chart.kind === "pie")
            return {
                data,
                backgroundColor: chart.sliceColours,
                borderColor: theme.surface,
                borderWidth: 2,
                hoverOffset: 6,
            };
        const edge = standingOut(series.colour, theme.surface);
        const common = { label: series.name, data, borderColor: edge };
        if (chart.kind === "line")
            return {
                ...common,
                backgroundColor: edge,
                borderWidth: 2,
                borderDash: kDashes[at % kDashes.length],
                pointStyle: kPointStyles[at % kPointStyles.length],
                pointRadius: series.points.length > 62 ? 0 : 3,
                pointHitRadius: 8,
                clip: 8,
            };
        return {
            ...common,
            backgroundColor: chart.isGlass ? glass(series.colour, theme) : fillOf(series.colour, theme),
            borderWidth: 1,
            borderRadius: chart.isStacked ? 0 : 3,
            maxBarThickness: 90,
        };
    }

    // A slice's key tells its share, so that nobody needs to match colours exactly.
    function sliceKeys(chart, instance) {
        const keys = Chart.overrides.pie.plugins.legend.labels.generateLabels(instance);
        const total = sum(chart.series[0].points) || 1;
        for (const key of keys) {
            const value = chart.series[0].points[key.index]?.value ?? 0;
            const share = (value / total) * 100;
            key.text = `${key.text}: ${show(chart, value)} (${share.toFixed(1)}%)`;
        }
        return keys;
    }

    function scalesOf(chart, theme) {
        if (chart.kind === "pie") return {};
        const title = (text) => ({ display: text !== "", text, color: theme.muted, font: { size: chart.textSize } });
        const isBelowZero = chart.series.some(({ points }) => points.some(({ value }) => value < 0));
        return {
            x: {
                stacked: chart.isStacked,
                title: title(chart.xTitle),
                grid: { display: false },
                border: { color: theme.line },
                ticks: { color: theme.muted, minRotation: 0, maxRotation: chart.rotation },
            },
            y: {
                stacked: chart.isStacked,
                title: title(chart.yTitle),
                min: isBelowZero ? undefined : 0,
                max: chart.max ?? undefined,
                grid: { color: theme.line },
                border: { display: false },
                ticks: {
                    color: theme.muted,
                    stepSize: chart.step || undefined,
                    callback: (value) => show(chart, value, 0),
                },
            },
        };
    }

    function configurationOf(chart, theme, open) {
        const isStill = theme === kPaper || matchMedia("(prefers-reduced-motion: reduce)").matches;
        const isLine = chart.kind === "line";
        const labels = { color: theme.text, usePointStyle: isLine, boxWidth: 14, boxHeight: isLine ? 7 : 14 };
        if (chart.kind === "pie") labels.generateLabels = (instance) => sliceKeys(chart, instance);
        const isWide = window.innerWidth >= 600;
        return {
            type: chart.kind,
            data: {
                labels: chart.labels,
                datasets: chart.series.map((series, at) => datasetOf(chart, theme, series, at)),
            },
            options: {
                responsive: true,
                maintainAspectRatio: false,
                animation: isStill ? false : { duration: 300 },
                rotation: chart.kind === "pie" ? 90 - chart.startAngle : undefined,
                color: theme.text,
                interaction: { mode: "nearest", intersect: chart.kind !== "line" },
                scales: scalesOf(chart, theme),
                plugins: {
                    title: {
                        display: chart.title !== "",
                        text: chart.title,
                        color: theme.text,
                        font: { size: Math.min(chart.titleSize, isWide ? 20 : 16), weight: "600" },
                    },
                    legend: {
                        display: chart.kind === "pie" || chart.series.length > 1,
                        position: chart.kind === "pie" && isWide ? "right" : "top",
                        labels,
                    },
                    tooltip: {
                        displayColors: chart.kind !== "pie",
                        callbacks: {
                            title: ([item]) => (chart.kind === "pie" || !item ? "" : item.label),
                            label: ({ datasetIndex, dataIndex }) => tipOf(chart, datasetIndex, dataIndex),
                        },
                    },
                },
                onClick: (_, [element]) => element && open(element.datasetIndex, element.index),
                onHover: ({ native }, [element]) => {
                    const link = element && chart.series[element.datasetIndex].points[element.index]?.link;
                    if (native) native.target.style.cursor = link ? "pointer" : "default";
                },
            },
        };
    }

    // Page

    function make(name, attributes = {}, ...children) {
        const element = document.createElement(name);
        for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
        element.append(...children);
        return element;
    }

    function tableCell(chart, point) {
        const text = show(chart, point?.value);
        if (!point?.link) return make("td", { class: "number" }, text);
        return make("td", { class: "number" }, make("a", { href: point.link, tabindex: "-1" }, text));
    }

    function tableOf(chart) {
        const names = chart.series.map(({ name }) => make("th", { scope: "col", class: "number" }, name || chart.yTitle));
        const rows = chart.labels.map((label, at) =>
            make(
                "tr",
                {},
                make("th", { scope: "row" }, label),
                ...chart.series.map(({ points }) => tableCell(chart, points[at])),
            ),
        );
        return make(
            "table",
            { class: "chartFigures" },
            make("caption", { class: "srOnly" }, chart.title),
            make("thead", {}, make("tr", {}, make("th", { scope: "col" }, chart.xTitle || "Label"), ...names)),
            make("tbody", {}, ...rows),
        );
    }

    // The table is there for screen readers from the start; the button shows it to everybody.
    function addTable(figure, chart, id) {
        const table = make("div", { id: `${id}Table`, class: "srOnly", role: "region" }, tableOf(chart));
        table.setAttribute("aria-label", `Figures of the chart ${chart.title}`);
        const button = make(
            "button",
            { type: "button", class: "chartToggle", "aria-expanded": "false", "aria-controls": table.id },
            "Show as table",
        );
        button.addEventListener("click", () => {
            const isShown = button.getAttribute("aria-expanded") !== "true";
            button.setAttribute("aria-expanded", String(isShown));
            button.textContent = isShown ? "Hide the table" : "Show as table";
            table.className = isShown ? "chartTable" : "srOnly";
            if (isShown) table.tabIndex = 0;
            else table.removeAttribute("tabindex");
            for (const link of table.querySelectorAll("a")) link.tabIndex = isShown ? 0 : -1;
        });
        figure.append(button, table);
    }

    // The arrow keys go from point to point, Enter follows a point's link.
    function addKeys(canvas, chart, instanceOf, open) {
        const spoken = make("div", { class: "srOnly", "aria-live": "polite" });
        canvas.after(spoken);
        let seriesAt = 0;
        let at = -1;
        const select = () => {
            const instance = instanceOf();
            const active = at < 0 ? [] : [{ datasetIndex: seriesAt, index: at }];
            instance.setActiveElements(active);
            const element = at < 0 ? null : instance.getDatasetMeta(seriesAt).data[at];
            instance.tooltip.setActiveElements(active, element?.tooltipPosition(true) ?? { x: 0, y: 0 });
            instance.update("none");
            if (at < 0) return;
            const tip = tipOf(chart, seriesAt, at).join(", ");
            const link = chart.series[seriesAt].points[at]?.link ? ". Enter shows the calls." : "";
            spoken.textContent = `${chart.kind === "pie" ? "" : `${chart.labels[at]}: `}${tip}${link}`;
        };
        const moves = {
            ArrowRight: () => (at = Math.min(at + 1, chart.labels.length - 1)),
            ArrowLeft: () => (at = Math.max(at - 1, 0)),
            Home: () => (at = 0),
            End: () => (at = chart.labels.length - 1),
            ArrowUp: () => (seriesAt = Math.min(seriesAt + 1, chart.series.length - 1)),
            ArrowDown: () => (seriesAt = Math.max(seriesAt - 1, 0)),
            Escape: () => (at = -1),
        };
        canvas.addEventListener("keydown", (event) => {
            if (event.key === "Enter" && at >= 0) open(seriesAt, at);
            const move = moves[event.key];
            if (!move) return;
            event.preventDefault();
            move();
            if (event.key.startsWith("Arrow")) at = Math.max(at, 0);
            select();
        });
        canvas.addEventListener("blur", () => {
            at = -1;
            select();
        });
    }

    function drawInto(figure, target, chart) {
        const open = (seriesAt, at) => {
            const link = chart.series[seriesAt]?.points[at]?.link;
            if (link) location.assign(link);
        };
        const canvas = make("canvas", {
            tabindex: "0",
            role: "application",
            "aria-roledescription": "chart",
            "aria-label": `${chart.title}. The arrow keys move from point to point.`,
        });
        target.replaceChildren(make("div", { class: "chartCanvas" }, canvas));
        let instance;
        const redraw = (theme) => {
            instance?.destroy();
            instance = new Chart(canvas, configurationOf(chart, theme, open));
        };
        redraw(themeOfPage());
        addKeys(canvas, chart, () => instance, open);
        addTable(figure, chart, target.id);
        matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => redraw(themeOfPage()));
        // Paper is white and has a width of its own.
        window.addEventListener("beforeprint", () => {
            redraw(kPaper);
            instance.resize(680, 360);
        });
        window.addEventListener("afterprint", () => redraw(themeOfPage()));
    }

    async function load(figure) {
        const target = figure.querySelector("div[id]");
        try {
            if (!figure.dataset.chart) throw new Error("no file");
            // An address with a password in it, such as the page's own may be, cannot be fetched.
            const page = location.origin + location.pathname;
            const answer = await fetch(new URL(figure.dataset.chart, page));
            if (!answer.ok) throw new Error(answer.statusText);
            const chart = readDescription(await answer.json());
            if (chart.series.length === 0) throw new Error("no series");
            drawInto(figure, target, chart);
        } catch {
            target.replaceChildren(make("p", { class: "hint", role: "status" }, kFailed));
        }
    }

    const drawAll = () => {
        Chart.defaults.font.family = getComputedStyle(document.body).fontFamily;
        for (const figure of document.querySelectorAll("figure[data-chart]")) load(figure);
    };
    globalThis.lumoraCharts = { drawAll };
    if (document.readyState === "loading") document.addEventListener("DOMContentLoaded", drawAll);
    else drawAll();
})();
