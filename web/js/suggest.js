// Offers names while somebody types. A field asks for it with the attribute data-suggest, the address
// to ask; data-ticks names the group of boxes that say which kinds to look for, and data-kind the list
// that is set to the kind of the name that was chosen.
'use strict';

jQuery(($) => {
    const argumentsOf = (field, typed) => {
        const asked = { q: typed };
        const ticks = document.getElementById(field.dataset.ticks);
        if (ticks)
            for (const box of ticks.querySelectorAll('input:checked'))
                asked[box.name.replace(/^2/, '')] = 'on';
        return asked;
    };

    $('[data-suggest]').each((_, field) => {
        $(field)
            .autocomplete({
                minLength: 1,
                delay: 200,
                source: (request, show) => {
                    $.ajax({
                        url: field.dataset.suggest,
                        data: argumentsOf(field, request.term),
                        dataType: 'json',
                    })
                        .done(show)
                        .fail(() => show([]));
                },
                select: (_event, { item }) => {
                    const kind = document.getElementById(field.dataset.kind);
                    if (kind && [...kind.options].some((option) => option.value === item.type))
                        kind.value = item.type;
                },
            })
            .autocomplete('instance')._renderItem = (list, item) => {
            const entry = $('<div>').text(item.label);
            if (item.icon) entry.prepend($('<img>', { src: item.icon, alt: item.type }));
            return $('<li>').append(entry).appendTo(list);
        };
    });
});
