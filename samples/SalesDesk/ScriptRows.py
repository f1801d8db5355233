"""The rows of SalesDesk's line-by-line scripts: one statement a line, the same at every build."""

COUNTRIES = {
    "AT": "Austria", "BE": "Belgium", "CH": "Switzerland", "CZ": "Czech Republic", "DE": "Germany",
    "DK": "Denmark", "ES": "Spain", "FI": "Finland", "FR": "France", "GB": "United Kingdom",
    "IE": "Ireland", "IN": "India", "IT": "Italy", "LU": "Luxembourg", "NL": "Netherlands",
    "NO": "Norway", "PL": "Poland", "PT": "Portugal", "SE": "Sweden", "US": "United States",
}
UNITS = {"pcs": "piece", "box": "box of ten", "kg": "kilogram", "m": "metre", "l": "litre",
         "set": "set"}
MATERIALS = ["oak", "steel", "linen", "glass", "paper", "cork", "copper", "wool", "slate", "beech"]
GROUPS = {
    "Desks": ["writing desk", "corner desk", "standing desk", "side table"],
    "Chairs": ["office chair", "stool", "bench", "armchair"],
    "Storage": ["drawer unit", "shelf", "filing box", "cabinet"],
    "Writing": ["pen tray", "notebook", "blotter", "card index"],
    "Lighting": ["desk lamp", "floor lamp", "wall lamp", "lamp shade"],
}
CUSTOMERS = [
    ("Müller & Söhne", "Köln", "DE"), ("Café Brûlé", "Liège", "BE"), ("O'Neill Books", "Cork", "IE"),
    ("Señor Núñez", "Málaga", "ES"), ("Ångström Design", "Malmö", "SE"), ("Bærum Kontor", "Oslo", "NO"),
    ("Hill and Daughters", "Leeds", "GB"), ("Atelier François", "Besançon", "FR"),
    ("Kavita Traders", "Pune", "IN"), ("Zürcher Papier", "Zürich", "CH"),
]
BRANCHES = ["", " North", " South", " Harbour", " Station", " Market"]
ORDERS = 90
DAYS_A_MONTH = 28


def insert(table, **values):
    """One INSERT statement; texts become N'...' with their quotes doubled."""
    columns = ", ".join(f"[{name}]" for name in values)
    texts = ", ".join("N'" + value.replace("'", "''") + "'" if isinstance(value, str) else str(value)
                      for value in values.values())
    return f"INSERT INTO [dbo].[{table}] ({columns}) VALUES ({texts})"


def day(number):
    """The number-th day of the sample year, in the form that every server language reads."""
    return f"2012{number // DAYS_A_MONTH % 12 + 1:02}{number % DAYS_A_MONTH + 1:02}"


def articles():
    """Every material of every kind of thing: (number, name, group, unit, price)."""
    found = []
    for group, (_, things) in enumerate(GROUPS.items(), start=1):
        for thing in things:
            for material in MATERIALS:
                number = len(found) + 1
                price = f"{5 + number * 37 % 240}.{number * 15 % 100:02}"
                found.append((f"SD-{number:04}", f"{thing.capitalize()}, {material}", group,
                              number % len(UNITS) + 1, price))
    return found


def base_rows():
    """What a company needs before its first sale."""
    yield "USE SalesDesk_Sales"
    for code, name in COUNTRIES.items():
        yield insert("Country", Code=code, Name=name)
    yield "USE SalesDesk_Stock"
    for code, name in UNITS.items():
        yield insert("Unit", Code=code, Name=name)
    for name in GROUPS:
        yield insert("ArticleGroup", Name=name)
    for number, name, group, unit, price in articles():
        yield (f"INSERT INTO [dbo].[Article] ([ArticleNumber], [Name], [ArticleGroupId], [UnitId], "
               f"[Price]) VALUES (N'{number}', N'{name}', {group}, {unit}, {price})")


def demo_rows():
    """The base rows, and a year of a small company's life on top of them."""
    yield from base_rows()
    stock = articles()
    yield "USE SalesDesk_Sales"
    customers = [(name + branch, city, country) for branch in BRANCHES
                 for name, city, country in CUSTOMERS]
    for number, (name, city, country) in enumerate(customers):
        yield insert("Customer", Name=name, City=city, CountryCode=country,
                     PaymentTermId=number % 4 + 1)
    for order in range(1, ORDERS + 1):
        yield insert("SalesOrder", CustomerId=order * 7 % len(customers) + 1,
                     OrderDate=day(order * 3), State="open" if order > ORDERS - 10 else "delivered")
        for line in range(order % 3 + 1):
            number, _, _, _, price = stock[(order * 11 + line * 29) % len(stock)]
            yield (f"INSERT INTO [dbo].[OrderLine] ([SalesOrderId], [ArticleNumber], [Quantity], "
                   f"[Price]) VALUES ({order}, N'{number}', {order * 5 % 9 + 1}, {price})")
    yield "USE SalesDesk_Stock"
    for number, (article, *_) in enumerate(stock[::4]):
        yield insert("Movement", ArticleNumber=article, StoreRoomId=number % 2 + 1,
                     Quantity=20 + number % 30, MovedOn=day(number))


def upgrade_rows():
    """Bar codes for every article, and what else the new version wants filled in."""
    yield "USE SalesDesk_Stock"
    for number, (article, *_) in enumerate(articles(), start=1):
        yield (f"UPDATE [dbo].[Article] SET [Barcode] = N'400638{number:07}' "
               f"WHERE [ArticleNumber] = N'{article}'")
    yield "DELETE FROM [dbo].[Movement] WHERE [Quantity] = 0"
    yield "USE SalesDesk_Sales"
    yield "UPDATE [dbo].[Customer] SET [Discount] = 2.5 WHERE [PaymentTermId] = 1"
    yield "UPDATE [dbo].[Country] SET [Name] = N'Czechia' WHERE [Code] = N'CZ'"
    yield "INSERT INTO [dbo].[Installation] ([Version], [InstalledOn]) VALUES (N'3.1', GETDATE())"
