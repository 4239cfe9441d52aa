// The look of the page: light, dark and on paper, on telephones and on wide screens. There is one accent colour, for
// the result of the correction. The display before it is dotted, the target dashed, and readings are open marks, so
// that nothing depends on colour alone.

#include "corvantile/report/sections.hpp"

namespace corvantile {

std::string_view picture_style() {
  return R"(:root{--paper:#fff;--ink:#1d2327;--soft:#5b666e;--faint:#8a949b;--rule:#e2e5e7;--accent:#0b7285;
--wash:#0b72851a;--r:#c92a2a;--g:#2b8a3e;--b:#1c5fd4}
@media screen and (prefers-color-scheme:dark){:root{--paper:#14181b;--ink:#e4e7e9;--soft:#a3adb4;--faint:#7d888f;
--rule:#2b3237;--accent:#4cc3d9;--wash:#4cc3d926;--r:#ff8080;--g:#69db7c;--b:#7fb0ff}}
svg{display:block;width:100%;height:auto;
font:11px system-ui,-apple-system,"Segoe UI",Roboto,"Helvetica Neue",Arial,sans-serif}
svg text{fill:var(--soft);font-variant-numeric:tabular-nums}
svg .axis-label{fill:var(--soft)}
svg .legend{fill:var(--ink)}
svg .note,svg .faint,svg .end{paint-order:stroke;stroke:var(--paper);stroke-width:3px;stroke-linejoin:round}
svg .note{fill:var(--ink)}
svg .faint{font-size:9px}
svg .strong{font-weight:700}
.grid{fill:none;stroke:var(--rule);stroke-width:1}
.axis{stroke:var(--faint);stroke-width:1}
.line{fill:none;stroke:var(--ink);stroke-width:1.4;stroke-linejoin:round;stroke-linecap:round}
.line.before{stroke:var(--soft);stroke-dasharray:.1 3.6;stroke-width:1.8}
.line.asked{stroke:var(--ink);stroke-dasharray:6 4;stroke-width:1.3;stroke-linecap:butt}
.line.after{stroke:var(--accent);stroke-width:2.2}
.line.filled{fill:var(--wash)}
.line.locus,.line.limit{stroke:var(--faint);stroke-width:1}
.line.grid{stroke:var(--faint);stroke-width:.8}
.line.move{stroke:var(--ink);stroke-width:1.2}
.head{fill:var(--ink)}
.line.red{stroke:var(--r);stroke-width:1.8}
.line.green{stroke:var(--g);stroke-width:1.8;stroke-dasharray:7 4}
.line.blue{stroke:var(--b);stroke-width:1.8;stroke-dasharray:1.5 3.5}
svg .end.red{fill:var(--r);font-weight:700}
svg .end.green{fill:var(--g);font-weight:700}
svg .end.blue{fill:var(--b);font-weight:700}
.point{fill:var(--paper);stroke:var(--ink);stroke-width:1.3}
.point.after{fill:var(--accent);stroke:var(--paper)}
.point.before{fill:var(--soft);stroke:var(--paper)}
.point.locus{fill:var(--faint);stroke:none;r:1.4px}
.tolerance{fill:var(--wash)}
.bar{fill:var(--accent)}
)";
}

std::string_view page_style() {
  return R"(*{box-sizing:border-box}
html{-webkit-text-size-adjust:100%}
body{margin:0;background:var(--paper);color:var(--ink);
font:16px/1.55 system-ui,-apple-system,"Segoe UI",Roboto,"Helvetica Neue",Arial,sans-serif}
main{max-width:1240px;margin:0 auto;padding:clamp(20px,5vw,64px) clamp(16px,4vw,48px)}
h1,h2,.verdict{font-family:"Iowan Old Style","Palatino Linotype",Palatino,"Book Antiqua",Georgia,serif;
font-weight:500;
text-wrap:balance}
h1{font-size:clamp(30px,5vw,46px);line-height:1.1;margin:0;letter-spacing:-.01em;overflow-wrap:anywhere}
h2{font-size:clamp(23px,3vw,29px);line-height:1.2;margin:0 0 8px}
h3{font-size:13px;font-weight:600;margin:0 0 8px;color:var(--soft);letter-spacing:.02em}
p{margin:0 0 12px;max-width:66ch}
a{color:var(--accent)}
.kind{margin:0 0 10px;color:var(--accent);font-size:13px;font-weight:600;letter-spacing:.06em;
text-transform:uppercase}
.target{color:var(--soft);margin:10px 0 0;font-size:17px}
section{margin-top:clamp(44px,7vw,84px);border-top:1px solid var(--rule);padding-top:clamp(20px,3vw,32px)}
#verdict{margin-top:clamp(24px,3vw,36px)}
.verdict{font-size:clamp(20px,2.6vw,27px);line-height:1.4;max-width:44em;margin-bottom:26px}
.lead{color:var(--soft);margin-bottom:22px}
.aside,.caption{color:var(--soft);font-size:14px}
.tiles{display:grid;grid-template-columns:repeat(auto-fit,minmax(min(160px,100%),1fr));gap:22px 24px;
margin-bottom:22px}
.tile{border-top:2px solid var(--accent);padding-top:10px}
.tile h3{margin:0}
.tile p{margin:0 0 4px;font-size:13.5px;line-height:1.45;color:var(--soft);font-variant-numeric:tabular-nums}
.whole{white-space:nowrap}
.tile .big{font-size:31px;line-height:1.25;color:var(--ink);letter-spacing:-.01em;white-space:nowrap}
.tile .big small{font-size:14px;letter-spacing:0;color:var(--soft)}
.figures{display:grid;grid-template-columns:repeat(auto-fill,minmax(min(310px,100%),1fr));gap:34px 36px;
align-items:start;
margin-bottom:22px}
.figures.wide{grid-template-columns:repeat(auto-fit,minmax(min(420px,100%),1fr))}
figure{margin:0;min-width:0}
figure svg{max-width:500px}
figcaption{font-size:14px;line-height:1.45;color:var(--soft);margin-top:6px}
.multiples{display:grid;grid-template-columns:repeat(auto-fill,minmax(min(220px,46%),1fr));gap:18px 22px;
margin-bottom:8px}
.multiples svg{max-width:260px}
.multiples .axis-label{fill:var(--ink);font-weight:600}
.columns{display:grid;grid-template-columns:repeat(auto-fit,minmax(min(420px,100%),1fr));gap:8px 44px;
align-items:start}
.scroll{overflow-x:auto;margin:0 0 18px}
table{border-collapse:collapse;font-size:14px;font-variant-numeric:tabular-nums lining-nums;width:100%;
max-width:720px}
caption{text-align:left;color:var(--soft);font-size:13px;font-weight:600;padding:0 0 6px}
th,td{text-align:left;padding:5px 12px 5px 0;border-bottom:1px solid var(--rule);vertical-align:top;font-weight:400}
thead th,thead td{color:var(--soft);font-size:13px;vertical-align:bottom}
tbody th{color:var(--soft)}
.n{text-align:right;white-space:nowrap}
thead .n{white-space:normal}
th:last-child,td:last-child{padding-right:0}
.pairs td,.pairs th{overflow-wrap:anywhere}
.pairs th{white-space:nowrap;width:1%}
code{font:13px ui-monospace,"SF Mono",Menlo,Consolas,"DejaVu Sans Mono",monospace;overflow-wrap:anywhere}
.patches{list-style:none;margin:0 0 10px;padding:0;display:grid;grid-template-columns:repeat(4,1fr);gap:16px 12px}
@media (min-width:600px){.patches{grid-template-columns:repeat(6,1fr)}}
@media (min-width:1000px){.patches{grid-template-columns:repeat(8,1fr)}}
.patches li{font-size:12.5px;line-height:1.35;font-variant-numeric:tabular-nums}
.swatch{border-radius:4px;border:1px solid var(--rule);margin-bottom:5px}
.patches b{font-size:14px}
.was,.patches .name{color:var(--soft)}
.was{white-space:nowrap}
.patches .name{display:block}
.findings{list-style:none;margin:0 0 22px;padding:0;max-width:74ch}
.findings li{padding:9px 0 9px 14px;border-left:3px solid var(--rule);margin-bottom:8px}
.findings code{color:var(--soft)}
.severity{font-weight:700}
.tall{max-height:28em;overflow:auto;border-bottom:1px solid var(--rule);margin-bottom:18px}
@media (max-width:520px){table.compact{font-size:12px}table.compact th,table.compact td{padding-right:5px}
.compact thead th{font-size:11px}
.compact .n{white-space:normal}}
@media print{@page{size:A4;margin:16mm 15mm}
body{font-size:10pt}
table{font-size:9pt;break-inside:avoid}
.tall table{break-inside:auto}
.compact .n{white-space:normal}
main{max-width:none;padding:0}
section{margin-top:8mm;padding-top:4mm}
.verdict{font-size:14pt}
h2,h3,.lead{break-after:avoid;break-inside:avoid}
figure,.tile,tr,.patches li,.multiples svg,.findings li{break-inside:avoid}
.figures,.figures.wide,.columns{grid-template-columns:repeat(2,minmax(0,1fr));gap:6mm 8mm}
.tiles{grid-template-columns:repeat(3,1fr);gap:4mm 8mm}
.multiples{grid-template-columns:repeat(4,1fr);gap:4mm}
.patches{grid-template-columns:repeat(6,1fr);gap:4mm}
.scroll{overflow:visible}
.tall{max-height:none;overflow:visible}
a{color:inherit;text-decoration:none}}
)";
}

}  // namespace corvantile
