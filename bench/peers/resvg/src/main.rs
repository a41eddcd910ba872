//! The measured titles as resvg draws them: a document read, its text laid out, drawn and turned
//! into straight alpha in each run; the font is opened once.

use std::error::Error;
use std::io::{self, BufRead, Write};
use std::sync::Arc;
use std::time::Instant;

use resvg::tiny_skia::{Pixmap, Transform};
use resvg::usvg::{fontdb, Options, Tree};
use serde_json::{json, Value};

struct Title {
    svg: String,
    options: Options<'static>,
    width: u32,
    height: u32,
}

impl Title {
    fn new(job: &Value) -> Result<Title, Box<dyn Error>> {
        let text = |name: &str| job[name].as_str().map(str::to_string).ok_or("not a title");
        let side = |name: &str| job[name].as_u64().map(|side| side as u32).ok_or("not a title");
        let mut fonts = fontdb::Database::new();
        fonts.load_font_file(text("font")?)?;
        let options = Options {
            font_family: text("family")?,
            fontdb: Arc::new(fonts),
            ..Options::default()
        };
        Ok(Title { svg: text("svg")?, options, width: side("width")?, height: side("height")? })
    }

    fn pixmap(&self) -> Result<Pixmap, Box<dyn Error>> {
        let tree = Tree::from_str(&self.svg, &self.options)?;
        let mut pixmap = Pixmap::new(self.width, self.height).ok_or("no picture")?;
        resvg::render(&tree, Transform::default(), &mut pixmap.as_mut());
        Ok(pixmap)
    }

    fn seconds(&self, at_least: f64) -> Result<f64, Box<dyn Error>> {
        self.pixmap()?.take_demultiplied();
        let mut taken = Vec::new();
        let start = Instant::now();
        while taken.is_empty() || start.elapsed().as_secs_f64() < at_least {
            let before = Instant::now();
            std::hint::black_box(self.pixmap()?.take_demultiplied());
            taken.push(before.elapsed().as_secs_f64());
        }
        taken.sort_by(f64::total_cmp);
        Ok(taken[taken.len() / 2])
    }
}

fn answer(title: &mut Option<Title>, question: &Value) -> Result<Value, Box<dyn Error>> {
    if let Some(job) = question.get("prepare") {
        let prepared = Title::new(job)?;
        prepared.pixmap()?;
        *title = Some(prepared);
        let note = "reads and lays out an SVG document";
        return Ok(json!({"ready": "resvg 0.49.0", "note": note}));
    }
    let title = title.as_ref().ok_or("nothing prepared")?;
    if let Some(at_least) = question["time"].as_f64() {
        return Ok(json!({"seconds": title.seconds(at_least)?}));
    }
    title.pixmap()?.save_png(question["save"].as_str().ok_or("no file")?)?;
    Ok(json!({"saved": true}))
}

fn main() -> Result<(), Box<dyn Error>> {
    let mut title = None;
    for line in io::stdin().lock().lines() {
        let said = serde_json::from_str(&line?)
            .map_err(Into::into)
            .and_then(|question| answer(&mut title, &question))
            .unwrap_or_else(|error| json!({"missing": error.to_string()}));
        println!("{said}");
        io::stdout().flush()?;
    }
    Ok(())
}
