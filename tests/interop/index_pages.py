"""Whether the overview of a medium, INDEX.HTM, is fit for every web browser: by its text, and in
headless Chromium where that is installed."""

import html.parser
import os
import pathlib
import re
import shutil
import subprocess
import tempfile

BROWSERS = ("chromium-headless-shell", "chromium", "chromium-browser", "google-chrome")
SECONDS = 120
KNOWN_TAGS = set("html head meta title style body h1 h2 h3 p a b br bdi img ul li span div".split())
# Screenshots stay where this environment variable says.
SHOTS = os.environ.get("PGKIT_SCREENSHOTS")


class Page(html.parser.HTMLParser):
    """The links, texts and tags of a page."""

    def __init__(self, text):
        super().__init__()
        self.tags = []
        self.attributes = []
        self.links = []
        self.text = ""
        self.open = []
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        self.tags.append(tag)
        self.attributes += [name for name, _ in attrs]
        self.links += [value for name, value in attrs if name in ("href", "src")]
        if tag not in ("meta", "br", "img"):
            self.open.append(tag)

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            raise ValueError(f"</{tag}> closes another element")

    def handle_data(self, data):
        if "style" not in self.open:
            self.text += data


def visible(text):
    return re.sub(r"\s+", "", text)


def pages_of(medium):
    """{path: Page} of all that INDEX.HTM leads to, and the other files that are linked."""
    pages, files, todo = {}, set(), [medium / "INDEX.HTM"]
    while todo:
        path = todo.pop()
        if path in pages:
            continue
        pages[path] = Page(path.read_text(encoding="utf-8"))
        for link in pages[path].links:
            if re.match(r"[a-z]+:|/|\\", link):
                raise ValueError(f"{path.name} leads outside: {link}")
            target = (path.parent / link).resolve()
            if medium.resolve() not in target.parents or not target.is_file():
                raise ValueError(f"{path.name}: {link} leads nowhere")
            if target.suffix == ".HTM":
                todo.append(medium / target.relative_to(medium.resolve()))
            else:
                files.add(target)
    return pages, files


def check_texts(medium):
    try:
        pages, files = pages_of(medium)
    except ValueError as error:
        return str(error)
    made = {path for path in medium.rglob("*.HTM")}
    if made != set(pages):
        return f"nothing leads to {sorted(made - set(pages))[:2]}"
    pictures = {path.resolve() for path in medium.rglob("*.PNG")}
    if pictures - files:
        return f"nothing shows {sorted(pictures - files)[:2]}"
    for path, page in pages.items():
        if set(page.tags) - KNOWN_TAGS or any(name.startswith("on") for name in page.attributes):
            return f"{path.name}: {sorted(set(page.tags) - KNOWN_TAGS)}"
        if page.open:
            return f"{path.name}: {page.open} are not closed"
    return None


def browse(browser, arguments, path):
    with tempfile.TemporaryDirectory(prefix="pgkit-browser-") as profile:
        return subprocess.run(
            [browser, "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--force-color-profile=srgb",
             f"--user-data-dir={profile}", *arguments, path.resolve().as_uri()],
            capture_output=True, timeout=SECONDS, check=False)


def check_in_browser(medium, name, browser, limit):
    """Each page, up to a limit, as the browser has understood it; and pictures of the first."""
    pages, _ = pages_of(medium)
    for path in sorted(pages)[:limit]:
        done = browse(browser, ["--dump-dom"], path)
        shown = Page(done.stdout.decode())
        if visible(shown.text) != visible(pages[path].text):
            return f"{path.name}: the browser shows another text"
        if sorted(shown.tags) != sorted(pages[path].tags):
            return f"{path.name}: the browser sees other elements"
    shots = pathlib.Path(SHOTS) if SHOTS else pathlib.Path(tempfile.mkdtemp(prefix="pgkit-shots-"))
    shots.mkdir(parents=True, exist_ok=True)
    for screen, size in (("desk", "1000,800"), ("phone", "390,844")):
        shot = shots / f"{name}-{screen}.png"
        browse(browser, [f"--window-size={size}", f"--screenshot={shot}"], medium / "INDEX.HTM")
        if not shot.is_file() or shot.stat().st_size < 2000:
            return f"no screenshot {screen}"
    if not SHOTS:
        shutil.rmtree(shots)
    return None


def check_pages(medium, name, limit=6):
    complaint = check_texts(medium)
    if complaint:
        return complaint
    browser = next(filter(None, map(shutil.which, BROWSERS)), None)
    if browser is None:
        return "SKIPPED: no Chromium is installed: INDEX.HTM was not looked at in a browser"
    return check_in_browser(medium, name, browser, limit)
