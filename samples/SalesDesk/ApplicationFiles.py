"""The small files of SalesDesk's application folder: help pages, templates and price lists."""

from ScriptRows import articles

# Three languages, so that names with blanks and with 8-bit characters lie three folders deep.
HELP = {
    "English": ("Help", {"First steps": 20, "Daily work": 30}, "page", "Previous", "Next"),
    "Français": ("Aide", {"Premiers pas": 20, "Travail à la journée": 30}, "page", "Précédente",
                 "Suivante"),
    "Español": ("Ayuda", {"Primeros pasos": 20, "El día a día": 30}, "página", "Anterior",
                "Siguiente"),
}
LETTERS = ["Offer", "Order confirmation", "Delivery note", "Invoice", "Reminder", "Credit note"]
HOUSES = {"Müller & Söhne": "Köln", "Café Brûlé": "Liège", "Hill and Daughters": "Leeds"}
SEASONS = {2010: ["Spring", "Autumn"], 2011: ["Spring", "Autumn"], 2012: ["Spring"]}

ABOUT_SETTINGS = """The set-up writes three small files beside this one:
Server.txt, User.txt and Password.txt. SalesDesk reads them when it starts.
"""
ABOUT_COMPONENTS = """SALESGRID.OCX shows tables, SalesPrint.dll prints them.
The set-up registers both; this text is no component and is left alone.
"""
READ_ME = """SalesDesk 3

Sales and stock for a small company. Start SalesDesk.exe; the help lies in the folder Help.
"""


def help_page(title, number, last, previous, following):
    """One page of the help, with links to its neighbours."""
    links = []
    if number > 1:
        links.append(f'<a href="{title} {number - 1:02}.htm">{previous}</a>')
    if number < last:
        links.append(f'<a href="{title} {number + 1:02}.htm">{following}</a>')
    return (f"<html><head><title>{title} {number}</title></head>\n"
            f"<body><h1>{title} {number} / {last}</h1>\n<p>{' | '.join(links)}</p>\n</body></html>\n")


def application_files():
    """Pairs of a path below the application folder (parts joined by "/") and its text."""
    yield "Read me first.txt", READ_ME
    yield "Settings/About the settings.txt", ABOUT_SETTINGS
    yield "Components/About the components.txt", ABOUT_COMPONENTS
    for language, (heading, chapters, title, previous, following) in HELP.items():
        yield f"Help/{language}/{heading}.htm", help_page(heading, 1, 1, previous, following)
        for chapter, last in chapters.items():  # pylint: disable=no-member  # taken for the heading
            for number in range(1, last + 1):
                yield (f"Help/{language}/{chapter}/{title} {number:02}.htm",
                       help_page(title, number, last, previous, following))
    for house, city in HOUSES.items():
        for letter in LETTERS:
            for copy in range(1, 4):
                yield (f"Templates/Letters/{house}/{letter} {copy:02}.txt",
                       f"{house}\n{city}\n\n{letter} [number]\n\n[lines]\n")
    for year, seasons in SEASONS.items():
        for season in seasons:
            for part in range(0, 200, 10):
                lines = "".join(f'{number};"{name}";{price}\n'
                                for number, name, _, _, price in articles()[part:part + 10])
                yield f"Price lists/{year}/{season}/List {part // 10 + 1:02}.csv", lines
    # A developer's own databases, left in the folder by mistake: they must not reach the machine.
    yield "Data/SalesDesk.mdf", "the developer's own database\n"
    yield "Data/SalesDesk.ldf", "and its log\n"
    # The ending is compared as it is written, so this one does reach it.
    yield "Archive/Archive.MDF", "an archive of the years before 2010\n"
